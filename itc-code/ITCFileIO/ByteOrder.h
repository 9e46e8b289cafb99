// The file's byte order, big-endian on every host: the only place where hosts differ.
#pragma once

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
#include <type_traits>

namespace corvantis {

inline constexpr uint16_t endianTest = 1;
// 1 where the home platform's order is the host's own.
inline constexpr int isBigEndian =
    std::bit_cast<std::array<uint8_t, sizeof endianTest>>(endianTest)[0] != 1 ? 1 : 0;

template <size_t Size>
struct BitsOfSize;
template <>
struct BitsOfSize<1> {
    using Type = uint8_t;
};
template <>
struct BitsOfSize<2> {
    using Type = uint16_t;
};
template <>
struct BitsOfSize<4> {
    using Type = uint32_t;
};
template <>
struct BitsOfSize<8> {
    using Type = uint64_t;
};

// The value with its bytes in reverse order; a float is reversed as its bit pattern.
template <class T>
constexpr T SwapEndian(T value) {
    using Bits = typename BitsOfSize<sizeof(T)>::Type;
    const Bits bits = std::bit_cast<Bits>(value);
    if constexpr (sizeof(T) == 1) {
        return value;
    } else if constexpr (sizeof(T) == 2) {
        return std::bit_cast<T>(static_cast<Bits>(bits << 8 | bits >> 8));
    } else if constexpr (sizeof(T) == 4) {
        return std::bit_cast<T>((bits & 0xFFu) << 24 | (bits & 0xFF00u) << 8 |
                                (bits >> 8 & 0xFF00u) | bits >> 24);
    } else {
        const uint64_t low = SwapEndian(static_cast<uint32_t>(bits));
        return std::bit_cast<T>(low << 32 | SwapEndian(static_cast<uint32_t>(bits >> 32)));
    }
}

// A value as the file holds it, as bits and by reference: a function's result may pass a register
// that makes a signalling NaN a quiet one, on 32-bit x86.
template <class T>
void StoreBigEndian(uint8_t* bytes, const T& value) {
    typename BitsOfSize<sizeof(T)>::Type bits;
    std::memcpy(&bits, &value, sizeof bits);
    if constexpr (isBigEndian == 0) bits = SwapEndian(bits);
    std::memcpy(bytes, &bits, sizeof bits);
}

template <class T>
void LoadBigEndian(const uint8_t* bytes, T& value) {
    typename BitsOfSize<sizeof(T)>::Type bits;
    std::memcpy(&bits, bytes, sizeof bits);
    if constexpr (isBigEndian == 0) bits = SwapEndian(bits);
    std::memcpy(&value, &bits, sizeof bits);
}

}  // namespace corvantis
