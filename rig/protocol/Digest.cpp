// SHA-256 as FIPS 180-4 defines it.
#include "protocol/Digest.h"

#include <fmt/format.h>

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>

namespace corvantis::rig {
namespace {

using Words = std::array<uint32_t, 8>;

constexpr size_t kBlock = 64;

// The first 32 bits of the fractional parts of the cube roots of the first 64 primes.
constexpr std::array<uint32_t, 64> kRoundWords = {
    0x428a2f98, 0x71374491, 0xb5c0fbcf, 0xe9b5dba5, 0x3956c25b, 0x59f111f1, 0x923f82a4, 0xab1c5ed5,
    0xd807aa98, 0x12835b01, 0x243185be, 0x550c7dc3, 0x72be5d74, 0x80deb1fe, 0x9bdc06a7, 0xc19bf174,
    0xe49b69c1, 0xefbe4786, 0x0fc19dc6, 0x240ca1cc, 0x2de92c6f, 0x4a7484aa, 0x5cb0a9dc, 0x76f988da,
    0x983e5152, 0xa831c66d, 0xb00327c8, 0xbf597fc7, 0xc6e00bf3, 0xd5a79147, 0x06ca6351, 0x14292967,
    0x27b70a85, 0x2e1b2138, 0x4d2c6dfc, 0x53380d13, 0x650a7354, 0x766a0abb, 0x81c2c92e, 0x92722c85,
    0xa2bfe8a1, 0xa81a664b, 0xc24b8b70, 0xc76c51a3, 0xd192e819, 0xd6990624, 0xf40e3585, 0x106aa070,
    0x19a4c116, 0x1e376c08, 0x2748774c, 0x34b0bcb5, 0x391c0cb3, 0x4ed8aa4a, 0x5b9cca4f, 0x682e6ff3,
    0x748f82ee, 0x78a5636f, 0x84c87814, 0x8cc70208, 0x90befffa, 0xa4506ceb, 0xbef9a3f7, 0xc67178f2};

// Likewise of the square roots of the first eight.
constexpr Words kStart = {0x6a09e667, 0xbb67ae85, 0x3c6ef372, 0xa54ff53a,
                          0x510e527f, 0x9b05688c, 0x1f83d9ab, 0x5be0cd19};

uint32_t Turned(uint32_t word, int a, int b, int c) {
    return std::rotr(word, a) ^ std::rotr(word, b) ^ std::rotr(word, c);
}

std::array<uint32_t, 64> Schedule(std::string_view block) {
    std::array<uint32_t, 64> w = {};
    for (size_t k = 0; k < kBlock; ++k) {
        w[k / 4] = w[k / 4] << 8 | static_cast<uint8_t>(block[k]);
    }
    for (size_t k = 16; k < w.size(); ++k) {
        const uint32_t a = w[k - 15], b = w[k - 2];
        w[k] = w[k - 16] + w[k - 7] + (std::rotr(a, 7) ^ std::rotr(a, 18) ^ a >> 3) +
               (std::rotr(b, 17) ^ std::rotr(b, 19) ^ b >> 10);
    }
    return w;
}

void Take(Words& hash, std::string_view block) {
    const std::array<uint32_t, 64> w = Schedule(block);
    auto [a, b, c, d, e, f, g, h] = hash;
    for (size_t k = 0; k < w.size(); ++k) {
        const uint32_t first =
            h + Turned(e, 6, 11, 25) + ((e & f) ^ (~e & g)) + kRoundWords[k] + w[k];
        const uint32_t second = Turned(a, 2, 13, 22) + ((a & b) ^ (a & c) ^ (b & c));
        h = g, g = f, f = e, e = d + first;
        d = c, c = b, b = a, a = first + second;
    }
    const Words mixed = {a, b, c, d, e, f, g, h};
    for (size_t k = 0; k < hash.size(); ++k) hash[k] += mixed[k];
}

// A one bit, zeros, and the length in bits, up to whole blocks.
std::string Padding(size_t size) {
    std::string padding(1, '\x80');
    while ((size + padding.size()) % kBlock != kBlock - 8) padding += '\0';
    for (int shift = 56; shift >= 0; shift -= 8) {
        padding += static_cast<char>(uint64_t{size} * 8 >> shift & 0xFF);
    }
    return padding;
}

}  // namespace

std::string Sha256(std::string_view text) {
    Words hash = kStart;
    const size_t whole = text.size() / kBlock * kBlock;
    for (size_t at = 0; at < whole; at += kBlock) Take(hash, text.substr(at, kBlock));
    const std::string end = std::string(text.substr(whole)) + Padding(text.size());
    for (size_t at = 0; at < end.size(); at += kBlock) {
        Take(hash, std::string_view(end).substr(at, kBlock));
    }
    std::string digits;
    for (const uint32_t word : hash) digits += fmt::format("{:08x}", word);
    return digits;
}

}  // namespace corvantis::rig
