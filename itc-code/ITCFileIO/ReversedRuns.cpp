// Runs of values copied with the bytes of each value in reverse order, many at a time.
#include "ITCFileIO/ReversedRuns.h"

#include <cstring>

#include "ITCFileIO/ByteOrder.h"
#include "ITCUtilities/FunctionClones.h"

namespace corvantis {
namespace {

template <class Bits>
inline void CopyReversing(uint8_t* __restrict to, const uint8_t* __restrict from, size_t count) {
    for (size_t i = 0; i < count * sizeof(Bits); i += sizeof(Bits)) {
        Bits bits;
        std::memcpy(&bits, from + i, sizeof bits);
        bits = SwapEndian(bits);
        std::memcpy(to + i, &bits, sizeof bits);
    }
}

template <class Bits>
inline void ReverseAll(uint8_t* bytes, size_t count) {
    for (size_t i = 0; i < count * sizeof(Bits); i += sizeof(Bits)) {
        Bits bits;
        std::memcpy(&bits, bytes + i, sizeof bits);
        bits = SwapEndian(bits);
        std::memcpy(bytes + i, &bits, sizeof bits);
    }
}

CORVANTIS_CLONES void ReversePairs(uint8_t* bytes, size_t count) {
    ReverseAll<uint16_t>(bytes, count);
}

CORVANTIS_CLONES void ReverseQuads(uint8_t* bytes, size_t count) {
    ReverseAll<uint32_t>(bytes, count);
}

CORVANTIS_CLONES void CopyPairs(uint8_t* to, const uint8_t* from, size_t count) {
    CopyReversing<uint16_t>(to, from, count);
}

CORVANTIS_CLONES void CopyQuads(uint8_t* to, const uint8_t* from, size_t count) {
    CopyReversing<uint32_t>(to, from, count);
}

}  // namespace

void CopyReversing2(uint8_t* to, const uint8_t* from, size_t count) { CopyPairs(to, from, count); }
void CopyReversing4(uint8_t* to, const uint8_t* from, size_t count) { CopyQuads(to, from, count); }

void Reverse2(uint8_t* bytes, size_t count) { ReversePairs(bytes, count); }
void Reverse4(uint8_t* bytes, size_t count) { ReverseQuads(bytes, count); }

}  // namespace corvantis
