// Interleaving and splitting for 1 to 4 entries.
#include "ITCInitialize/FixedInterleaving.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>

#include "ITCUtilities/FunctionClones.h"

namespace corvantis {
namespace {

// The number of entries known beforehand: only then is the inner loop no loop.
template <size_t Entries>
std::array<uint16_t*, Entries> Arrays(uint16_t* const* perEntry) {
    std::array<uint16_t*, Entries> arrays;
    std::copy_n(perEntry, Entries, arrays.begin());
    return arrays;
}

template <size_t Entries>
inline void Interleave(uint16_t* __restrict stream, uint16_t* const* perEntry, int32_t points) {
    const auto arrays = Arrays<Entries>(perEntry);
    for (size_t p = 0; p < static_cast<size_t>(points); ++p) {
        for (size_t c = 0; c < Entries; ++c) stream[Entries * p + c] = arrays[c][p];
    }
}

template <size_t Entries>
inline void Split(const uint16_t* __restrict stream, uint16_t* const* perEntry, int32_t points) {
    const auto arrays = Arrays<Entries>(perEntry);
    for (size_t p = 0; p < static_cast<size_t>(points); ++p) {
        for (size_t c = 0; c < Entries; ++c) arrays[c][p] = stream[Entries * p + c];
    }
}

CORVANTIS_CLONES void Interleave2(uint16_t* stream, uint16_t* const* perEntry, int32_t points) {
    Interleave<2>(stream, perEntry, points);
}
CORVANTIS_CLONES void Interleave3(uint16_t* stream, uint16_t* const* perEntry, int32_t points) {
    Interleave<3>(stream, perEntry, points);
}
CORVANTIS_CLONES void Interleave4(uint16_t* stream, uint16_t* const* perEntry, int32_t points) {
    Interleave<4>(stream, perEntry, points);
}
// Two arrays take turns, by as many points as stay in the first cache: two that are written at once
// are slower by a third, though three or four are not.
CORVANTIS_CLONES void Split2(const uint16_t* stream, uint16_t* const* perEntry, int32_t points) {
    constexpr size_t kBlock = 4096;
    const auto count = static_cast<size_t>(points);
    for (size_t start = 0; start < count; start += kBlock) {
        const size_t end = std::min(start + kBlock, count);
        for (size_t c = 0; c < 2; ++c) {
            uint16_t* __restrict array = perEntry[c];
            for (size_t p = start; p < end; ++p) array[p] = stream[2 * p + c];
        }
    }
}
CORVANTIS_CLONES void Split3(const uint16_t* stream, uint16_t* const* perEntry, int32_t points) {
    Split<3>(stream, perEntry, points);
}
CORVANTIS_CLONES void Split4(const uint16_t* stream, uint16_t* const* perEntry, int32_t points) {
    Split<4>(stream, perEntry, points);
}

}  // namespace

void InterleaveFixed(uint16_t* interleaved, uint16_t* const* perEntry, int32_t entries,
                     int32_t points) {
    if (entries == 2) return Interleave2(interleaved, perEntry, points);
    if (entries == 3) return Interleave3(interleaved, perEntry, points);
    if (entries == 4) return Interleave4(interleaved, perEntry, points);
    std::memcpy(interleaved, perEntry[0], sizeof(uint16_t) * static_cast<size_t>(points));
}

void SplitFixed(const uint16_t* interleaved, uint16_t* const* perEntry, int32_t entries,
                int32_t points) {
    if (entries == 2) return Split2(interleaved, perEntry, points);
    if (entries == 3) return Split3(interleaved, perEntry, points);
    if (entries == 4) return Split4(interleaved, perEntry, points);
    std::memcpy(perEntry[0], interleaved, sizeof(uint16_t) * static_cast<size_t>(points));
}

}  // namespace corvantis
