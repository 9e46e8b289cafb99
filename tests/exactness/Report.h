// Named sections of values: each becomes a file of its bytes and a line with their digest.
#pragma once

#include <bit>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iomanip>
#include <string>
#include <type_traits>
#include <vector>

namespace exactness {

using Bytes = std::vector<uint8_t>;
using Samples = std::vector<uint16_t>;

// Ends the program: a run in which a call fails has nothing to compare.
inline void Require(bool done, const char* what) {
    if (done) return;
    std::fprintf(stderr, "failed: %s\n", what);
    std::exit(EXIT_FAILURE);
}

// Most significant byte first, by arithmetic: independent of the host and of the library.
template <class T>
void AppendBytes(Bytes& bytes, T value) {
    using Bits = std::conditional_t<
        sizeof(T) == 8, uint64_t,
        std::conditional_t<sizeof(T) == 4, uint32_t,
                           std::conditional_t<sizeof(T) == 2, uint16_t, uint8_t>>>;
    const Bits bits = std::bit_cast<Bits>(value);
    for (int shift = 8 * sizeof(T) - 8; shift >= 0; shift -= 8) {
        bytes.push_back(static_cast<uint8_t>(bits >> shift));
    }
}

// FNV-1a, 64 bits (G. Fowler, L. C. Noll, K.-P. Vo).
inline uint64_t Digest(const Bytes& bytes) {
    uint64_t digest = 14695981039346656037u;
    for (const uint8_t byte : bytes) digest = (digest ^ byte) * 1099511628211u;
    return digest;
}

// f32, u16 and so on: all that the comparison must know to count differing values.
template <class T>
std::string TypeLabel() {
    const char kind = std::is_floating_point_v<T> ? 'f' : std::is_signed_v<T> ? 'i' : 'u';
    return kind + std::to_string(8 * sizeof(T));
}

class Report {
  public:
    explicit Report(std::filesystem::path place) : folder(std::move(place)) {
        std::filesystem::create_directories(folder);
        list.open(folder / "digests.txt");
        Require(list.is_open(), "opening the list of digests");
    }
    void Remark(const std::string& text) { list << "# " << text << '\n'; }
    template <class T>
    void Add(const std::string& name, const std::vector<T>& values) {
        Bytes bytes;
        bytes.reserve(values.size() * sizeof(T));
        for (const T value : values) AppendBytes(bytes, value);
        list << name << ' ' << TypeLabel<T>() << ' ' << values.size() << ' ' << std::hex
             << std::setw(16) << std::setfill('0') << Digest(bytes) << std::dec << '\n';
        std::ofstream raw(folder / (name + ".raw"), std::ios::binary);
        raw.write(reinterpret_cast<const char*>(bytes.data()),
                  static_cast<std::streamsize>(bytes.size()));
        Require(raw.good() && list.good(), "writing a section");
    }

    const std::filesystem::path folder;

  private:
    std::ofstream list;
};

}  // namespace exactness
