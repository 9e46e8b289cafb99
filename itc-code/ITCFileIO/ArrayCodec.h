// Whole arrays between memory and the data file, in blocks that count as one transfer per element.
#pragma once

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <type_traits>

#include "ITCFileIO/ByteOrder.h"
#include "ITCFileIO/ReversedRuns.h"

namespace corvantis {

// Bytes: large transfers bypass the stream's buffer.
inline constexpr size_t kArrayBlock = 131072;

// Bits that are only to be copied, in this order or in the other.
template <class FileType, class MemoryType>
inline constexpr bool kIsCopied = sizeof(FileType) == sizeof(MemoryType) &&
                                  (sizeof(FileType) == 2 || sizeof(FileType) == 4) &&
                                  std::is_integral_v<FileType> == std::is_integral_v<MemoryType>;

template <size_t Size>
void CopyInFileOrder(void* to, const void* from, size_t count) {
    auto* target = static_cast<uint8_t*>(to);
    const auto* source = static_cast<const uint8_t*>(from);
    if constexpr (isBigEndian != 0) {
        std::memcpy(target, source, Size * count);
    } else if constexpr (Size == 2) {
        CopyReversing2(target, source, count);
    } else {
        CopyReversing4(target, source, count);
    }
}

// Values that stand in memory as they came from the file.
template <class Value>
void DecodeInPlace(Value* values, size_t count) {
    static_assert(kIsCopied<Value, Value>);
    if constexpr (isBigEndian == 0 && sizeof(Value) == 2) {
        Reverse2(reinterpret_cast<uint8_t*>(values), count);
    } else if constexpr (isBigEndian == 0) {
        Reverse4(reinterpret_cast<uint8_t*>(values), count);
    }
}

template <class FileType, class MemoryType>
void EncodeBlock(uint8_t* bytes, const MemoryType* values, size_t count) {
    if constexpr (kIsCopied<FileType, MemoryType>) {
        CopyInFileOrder<sizeof(FileType)>(bytes, values, count);
    } else {
        for (size_t i = 0; i < count; ++i) {
            StoreBigEndian(bytes + i * sizeof(FileType), static_cast<FileType>(values[i]));
        }
    }
}

template <class FileType, class MemoryType>
void DecodeBlock(const uint8_t* bytes, MemoryType* values, size_t count) {
    if constexpr (kIsCopied<FileType, MemoryType>) {
        CopyInFileOrder<sizeof(FileType)>(values, bytes, count);
    } else {
        for (size_t i = 0; i < count; ++i) {
            FileType value;
            LoadBigEndian(bytes + i * sizeof(FileType), value);
            values[i] = static_cast<MemoryType>(value);
        }
    }
}

// The standard defines a block transfer as one transfer per element up to the first that fails. The
// failed element is passed over and the rest attempted one by one, as single transfers would.
template <class FileType, class MemoryType>
bool WriteArray(FILE* stream, const MemoryType* values, size_t count) {
    uint8_t bytes[kArrayBlock];
    bool complete = true;
    for (size_t done = 0; done < count;) {
        const size_t block = complete ? std::min(sizeof bytes / sizeof(FileType), count - done) : 1;
        EncodeBlock<FileType>(bytes, values + done, block);
        const size_t written = std::fwrite(bytes, sizeof(FileType), block, stream);
        if (written < block) complete = false;
        done += written < block ? written + 1 : block;
    }
    return complete;
}

// At the end of the file no further element can arrive, so the attempts stop there: a count from a
// damaged header costs no time. What has arrived of the last one takes the place of its first
// bytes.
template <class FileType, class MemoryType>
bool ReadArray(FILE* stream, MemoryType* values, size_t count) {
    constexpr size_t kSize = sizeof(FileType);
    uint8_t bytes[kArrayBlock];
    bool complete = true;
    for (size_t done = 0; done < count;) {
        const size_t block = complete ? std::min(sizeof bytes / kSize, count - done) : 1;
        const size_t read = std::fread(bytes, 1, block * kSize, stream);
        const size_t whole = read / kSize;
        DecodeBlock<FileType>(bytes, values + done, whole);
        if (whole < block) complete = false;
        if (read % kSize != 0) {
            uint8_t last[kSize];
            EncodeBlock<FileType>(last, values + done + whole, 1);
            std::memcpy(last, bytes + whole * kSize, read % kSize);
            DecodeBlock<FileType>(last, values + done + whole, 1);
        }
        if (whole < block && std::feof(stream) != 0) break;
        done += whole < block ? whole + 1 : block;
    }
    return complete;
}

}  // namespace corvantis
