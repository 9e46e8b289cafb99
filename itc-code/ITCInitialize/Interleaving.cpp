// Conversion between one array per sequence entry and the device's interleaved stream.
#include <cstddef>

#include "Corvantis.h"

namespace corvantis {
namespace {

template <class Move>
void ForEachSample(int32_t entries, int32_t points, Move move) {
    ptrdiff_t index = 0;
    for (int32_t p = 0; p < points; ++p) {
        for (int32_t c = 0; c < entries; ++c) move(index++, c, p);
    }
}

}  // namespace
}  // namespace corvantis

void ITCInterleaveData(uint16_t* interleaved, uint16_t* const* perEntry, int32_t entries,
                       int32_t points) {
    corvantis::ForEachSample(entries, points, [=](ptrdiff_t index, int32_t c, int32_t p) {
        interleaved[index] = perEntry[c][p];
    });
}

void ITCSplitData(const uint16_t* interleaved, uint16_t* const* perEntry, int32_t entries,
                  int32_t points) {
    corvantis::ForEachSample(entries, points, [=](ptrdiff_t index, int32_t c, int32_t p) {
        perEntry[c][p] = interleaved[index];
    });
}
