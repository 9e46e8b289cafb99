// Interleaving and splitting for 1 to 4 entries.
#include "ITCInitialize/FixedInterleaving.h"

#include <cstddef>
#include <cstring>

#include "ITCUtilities/FunctionClones.h"

namespace corvantis {
namespace {

CORVANTIS_CLONES void Interleave2(uint16_t* __restrict stream, uint16_t* const* perEntry,
                                  int32_t points) {
    const uint16_t* __restrict a = perEntry[0];
    const uint16_t* __restrict b = perEntry[1];
    for (ptrdiff_t p = 0; p < points; ++p) {
        stream[2 * p] = a[p];
        stream[2 * p + 1] = b[p];
    }
}

CORVANTIS_CLONES void Split2(const uint16_t* __restrict stream, uint16_t* const* perEntry,
                             int32_t points) {
    uint16_t* __restrict a = perEntry[0];
    uint16_t* __restrict b = perEntry[1];
    for (ptrdiff_t p = 0; p < points; ++p) {
        a[p] = stream[2 * p];
        b[p] = stream[2 * p + 1];
    }
}

CORVANTIS_CLONES void Interleave3(uint16_t* __restrict stream, uint16_t* const* perEntry,
                                  int32_t points) {
    const uint16_t* __restrict a = perEntry[0];
    const uint16_t* __restrict b = perEntry[1];
    const uint16_t* __restrict c = perEntry[2];
    for (ptrdiff_t p = 0; p < points; ++p) {
        stream[3 * p] = a[p];
        stream[3 * p + 1] = b[p];
        stream[3 * p + 2] = c[p];
    }
}

CORVANTIS_CLONES void Split3(const uint16_t* __restrict stream, uint16_t* const* perEntry,
                             int32_t points) {
    uint16_t* __restrict a = perEntry[0];
    uint16_t* __restrict b = perEntry[1];
    uint16_t* __restrict c = perEntry[2];
    for (ptrdiff_t p = 0; p < points; ++p) {
        a[p] = stream[3 * p];
        b[p] = stream[3 * p + 1];
        c[p] = stream[3 * p + 2];
    }
}

CORVANTIS_CLONES void Interleave4(uint16_t* __restrict stream, uint16_t* const* perEntry,
                                  int32_t points) {
    const uint16_t* __restrict a = perEntry[0];
    const uint16_t* __restrict b = perEntry[1];
    const uint16_t* __restrict c = perEntry[2];
    const uint16_t* __restrict d = perEntry[3];
    for (ptrdiff_t p = 0; p < points; ++p) {
        stream[4 * p] = a[p];
        stream[4 * p + 1] = b[p];
        stream[4 * p + 2] = c[p];
        stream[4 * p + 3] = d[p];
    }
}

CORVANTIS_CLONES void Split4(const uint16_t* __restrict stream, uint16_t* const* perEntry,
                             int32_t points) {
    uint16_t* __restrict a = perEntry[0];
    uint16_t* __restrict b = perEntry[1];
    uint16_t* __restrict c = perEntry[2];
    uint16_t* __restrict d = perEntry[3];
    for (ptrdiff_t p = 0; p < points; ++p) {
        a[p] = stream[4 * p];
        b[p] = stream[4 * p + 1];
        c[p] = stream[4 * p + 2];
        d[p] = stream[4 * p + 3];
    }
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
