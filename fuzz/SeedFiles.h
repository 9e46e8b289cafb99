// Small recordings of every stimulus type, byte by byte.
#pragma once

#include <string>

#include "ITCFileIO/StimulusTypes.h"

namespace corvantis_fuzz {

// Of pulses and the like 5 before, 5 at and 5 behind the amplitude.
constexpr uint32_t kAnyWord = 5;
constexpr uint32_t kPoints = 3 * kAnyWord;

inline std::string Word(uint32_t value) {
    std::string bytes;
    for (int shift = 24; shift >= 0; shift -= 8) bytes.push_back(static_cast<char>(value >> shift));
    return bytes;
}

// Every field of it the same; a sum of a pulse and noise; a dynamic clamp with its conductances.
inline std::string RecordBytes(uint32_t type) {
    std::string bytes;
    const uint32_t size = corvantis::TypeRow(type).record->fileSize;
    while (bytes.size() < size) bytes += Word(kAnyWord);
    if (type == ITC_STIMULUS_DYNAMIC_CLAMP) bytes.resize(size + 8 * kPoints);
    if (type != ITC_STIMULUS_SUMMED) return bytes;
    bytes = Word(2) + "\x03\x02";
    bytes.resize(size);
    return bytes + RecordBytes(3) + RecordBytes(2);
}

// Two epochs, with a given type on every sequence entry; the comment is any number.
inline std::string FileBytes(uint32_t type, uint32_t entries, char version, uint32_t comment) {
    std::string epoch(912, '\0'), header(580, '\0');
    epoch.replace(572, 12, Word(100) + Word(kPoints) + Word(entries));
    epoch.replace(605, entries, std::string(entries, static_cast<char>(type)));
    for (uint32_t entry = 0; entry < entries; ++entry) epoch += RecordBytes(type);
    epoch.resize(epoch.size() + 2 * kPoints * entries);
    const auto size = static_cast<uint32_t>(epoch.size());
    header[0] = version;
    header[8] = static_cast<char>(comment);
    header.replace(536, 8, Word(2) + Word(580 + 2 * size));
    return header + epoch + epoch + Word(580) + Word(580 + size);
}

}  // namespace corvantis_fuzz
