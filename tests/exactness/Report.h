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

// Ends the program: a run in which a call fails has nothing to compare.
inline void Require(bool done, const char* what) {
    if (done) return;
    std::fprintf(stderr, "failed: %s\n", what);
    std::exit(EXIT_FAILURE);
}

class Report {
  public:
    explicit Report(const char* place) : folder(place) {
        std::filesystem::create_directories(folder);
        list_.open(folder / "digests.txt");
    }
    // Most significant bytes first, by arithmetic: independent of host and library. The digest is
    // FNV-1a (G. Fowler, L. C. Noll, K.-P. Vo).
    template <class Bits, class T>
    void Add(const std::string& name, const std::vector<T>& values) {
        std::ofstream raw(folder / (name + ".raw"), std::ios::binary);
        uint64_t digest = 14695981039346656037u;
        for (const T& value : values) {
            for (int shift = 8 * sizeof(T) - 8; shift >= 0; shift -= 8) {
                const auto byte = static_cast<uint8_t>(std::bit_cast<Bits>(value) >> shift);
                digest = (digest ^ byte) * 1099511628211u;
                raw.put(static_cast<char>(byte));
            }
        }
        list_ << name << std::dec << (std::is_floating_point_v<T> ? " f" : " u") << 8 * sizeof(T)
              << ' ' << values.size() << ' ' << std::hex << std::setfill('0') << std::setw(16)
              << digest << std::endl;
        Require(raw.flush().good() && list_.good(), "writing a section");
    }

    const std::filesystem::path folder;

  private:
    std::ofstream list_;
};

void ReportMaths(Report& report);
void ReportDataFiles(Report& report);

}  // namespace exactness
