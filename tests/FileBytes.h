// Bytes as they stand in a data file, put together by hand, and the streams and files that hold
// them.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <iterator>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace corvantis_test {

using Bytes = std::vector<uint8_t>;
using Samples = std::vector<uint16_t>;

template <class Value>
std::vector<Value> First(const std::vector<Value>& values, size_t count) {
    return {values.begin(), values.begin() + static_cast<std::ptrdiff_t>(count)};
}

// Two hexadecimal digits a byte; blanks may stand between bytes.
inline Bytes Hex(const std::string& digits) {
    Bytes bytes;
    for (size_t i = 0; i + 1 < digits.size(); ++i)
        if (digits[i] != ' ')
            bytes.push_back(static_cast<uint8_t>(std::stoi(digits.substr(i++, 2), {}, 16)));
    return bytes;
}

inline Bytes Big32(uint32_t value) {
    return {static_cast<uint8_t>(value >> 24), static_cast<uint8_t>(value >> 16),
            static_cast<uint8_t>(value >> 8), static_cast<uint8_t>(value)};
}

inline uint32_t Word(const Bytes& bytes, size_t offset) {
    uint32_t value = 0;
    for (size_t i = 0; i < 4; ++i) value = value << 8 | bytes.at(offset + i);
    return value;
}

inline Bytes Join(std::initializer_list<Bytes> pieces) {
    Bytes all;
    for (const Bytes& piece : pieces) all.insert(all.end(), piece.begin(), piece.end());
    return all;
}

inline void Put(Bytes& bytes, size_t offset, const Bytes& piece) {
    for (size_t i = 0; i < piece.size(); ++i) bytes.at(offset + i) = piece[i];
}

inline Bytes Text(std::string_view text, size_t size) {
    Bytes bytes(text.begin(), text.end());
    bytes.resize(size);
    return bytes;
}

inline Bytes BigSamples(const Samples& samples) {
    Bytes bytes;
    for (const uint16_t sample : samples)
        for (const int shift : {8, 0}) bytes.push_back(sample >> shift & 0xFF);
    return bytes;
}

// The header that a started library gives to its files.
inline Bytes FileHeaderBytes(uint8_t version, uint32_t numEpochs, uint32_t tablePosition) {
    const Bytes defaults = Hex("01 02 0000 45480000 45480000 05 000000");
    const Bytes counts = Join({Big32(numEpochs), Big32(tablePosition)});
    return Join({{version}, Bytes(519), defaults, counts, Hex("00000000 02 01"), Bytes(30)});
}

// A header with nothing but an acquisition in it, of the first entries of "0123"/"0123".
inline Bytes EpochHeaderBytes(uint32_t interval, uint32_t points, const Bytes& types) {
    Bytes bytes(912);
    const size_t entries = types.size();
    Put(bytes, 572, Join({Big32(interval), Big32(points), Big32(static_cast<uint32_t>(entries))}));
    for (uint32_t i = 0; i < entries; ++i) Put(bytes, 584 + 4 * i, Big32(i * 0x880));
    if (entries > 0) bytes[584 + 4 * entries - 2] |= 0xC0;
    Put(bytes, 605, types);
    return bytes;
}

using Stream = std::unique_ptr<FILE, int (*)(FILE*)>;

#if !defined(__wasi__)  // which has no temporary files
// Programs that run side by side on Windows can draw the same name with tmpfile.
inline FILE* OpenTemporary() {
#if defined(_WIN32)
    static int count = 0;
    const std::string name = std::to_string(getpid()) + "-" + std::to_string(++count) + ".tmp";
    const auto path = std::filesystem::temp_directory_path() / ("corvantis-" + name);
    return _wfopen(path.c_str(), L"w+bTD");  // deleted when it is closed
#else
    return std::tmpfile();
#endif
}

// A temporary file on disk, so that seeking behaves as in a data file, positioned at its start.
inline Stream StreamOver(const Bytes& bytes = {}) {
    Stream stream(OpenTemporary(), fclose);
    if (!bytes.empty()) fwrite(bytes.data(), 1, bytes.size(), stream.get());
    rewind(stream.get());
    return stream;
}
#endif

inline Bytes Content(FILE* stream) {
    Bytes bytes;
    rewind(stream);
    for (int byte = fgetc(stream); byte != EOF; byte = fgetc(stream)) bytes.push_back(byte & 0xFF);
    return bytes;
}

// Names are UTF-8, where they are not bytes.
inline std::filesystem::path PathOf(const std::string& name) {
    return std::u8string(name.begin(), name.end());
}

inline Bytes FileContent(const std::string& path) {
    std::ifstream file(PathOf(path), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

inline void WriteFile(const std::string& path, const Bytes& bytes) {
    const std::string content(bytes.begin(), bytes.end());
    std::ofstream(PathOf(path), std::ios::binary) << content;
}

// The same numbers on every host.
struct PseudoRandom : std::mt19937 {
    uint32_t Next() { return static_cast<uint32_t>((*this)()); }
    template <class Container>
    void Fill(Container& values) {
        for (auto& value : values) value = static_cast<std::decay_t<decltype(value)>>((*this)());
    }
};

}  // namespace corvantis_test
