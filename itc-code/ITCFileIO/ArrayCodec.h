// Whole arrays between memory and the data file, in blocks that count as one transfer per element.
#pragma once

#include <algorithm>
#include <cstdio>

#include "ITCFileIO/ByteOrder.h"

namespace corvantis {

inline constexpr size_t kArrayBlock = 4096;

// The standard defines a block transfer as one transfer per element up to the first that fails. The
// failed element is passed over and the rest attempted one by one, as single transfers would.
template <class FileType, class MemoryType>
bool WriteArray(FILE* stream, const MemoryType* values, size_t count) {
    uint8_t bytes[kArrayBlock * sizeof(FileType)];
    bool complete = true;
    for (size_t done = 0; done < count;) {
        const size_t block = complete ? std::min(kArrayBlock, count - done) : 1;
        for (size_t i = 0; i < block; ++i) {
            StoreBigEndian(bytes + i * sizeof(FileType), static_cast<FileType>(values[done + i]));
        }
        const size_t written = std::fwrite(bytes, sizeof(FileType), block, stream);
        if (written < block) complete = false;
        done += written < block ? written + 1 : block;
    }
    return complete;
}

// At the end of the file no further element can arrive, so the attempts stop there: a count from a
// damaged header costs no time.
template <class FileType, class MemoryType>
bool ReadArray(FILE* stream, MemoryType* values, size_t count) {
    uint8_t bytes[kArrayBlock * sizeof(FileType)];
    bool complete = true;
    for (size_t done = 0; done < count;) {
        const size_t block = complete ? std::min(kArrayBlock, count - done) : 1;
        const size_t read = std::fread(bytes, sizeof(FileType), block, stream);
        for (size_t i = 0; i < read; ++i) {
            FileType value;
            LoadBigEndian(bytes + i * sizeof(FileType), value);
            values[done + i] = static_cast<MemoryType>(value);
        }
        if (read < block) complete = false;
        if (read < block && std::feof(stream) != 0) break;
        done += read < block ? read + 1 : block;
    }
    return complete;
}

}  // namespace corvantis
