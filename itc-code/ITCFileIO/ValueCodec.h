// Single values between memory and the data file; the file type decides the width on file.
#pragma once

#include <cstdio>
#include <type_traits>
#include <utility>

#include "ITCFileIO/ByteOrder.h"
#include "ITCUtilities/Diagnostics.h"

namespace corvantis {

template <class FileType, class MemoryType>
bool WriteValue(FILE* stream, MemoryType value) {
    uint8_t bytes[sizeof(FileType)];
    StoreBigEndian(bytes, static_cast<FileType>(value));
    return std::fwrite(bytes, sizeof bytes, 1, stream) == 1;
}

// Whether memory can hold every value of the file type; only then the range test below vanishes.
template <class FileType, class MemoryType>
bool FitsInMemory(FileType value) {
    if constexpr (std::is_integral_v<FileType> && !std::is_same_v<MemoryType, char>) {
        return std::in_range<MemoryType>(value);
    } else {
        return true;
    }
}

// The destination takes whatever the stream delivered, also when that was not everything.
template <class FileType, class MemoryType>
bool ReadValue(FILE* stream, MemoryType& value) {
    uint8_t bytes[sizeof(FileType)] = {};
    const bool complete = std::fread(bytes, sizeof bytes, 1, stream) == 1;
    FileType fileValue;
    LoadBigEndian(bytes, fileValue);
    value = static_cast<MemoryType>(fileValue);
    if (FitsInMemory<FileType, MemoryType>(fileValue)) return complete;
    PrintValueOutOfRange();
    return false;
}

// Padding is zero on file and passed over on reading, never compared.
bool WritePadding(FILE* stream, unsigned long count);
bool SkipPadding(FILE* stream, unsigned long count);

}  // namespace corvantis
