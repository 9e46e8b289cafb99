// Conversion between one array per sequence entry and the device's interleaved stream.
#include <cstddef>
#include <functional>

#include "Corvantis.h"
#include "ITCInitialize/FixedInterleaving.h"

namespace corvantis {
namespace {

// A damaged epoch can have very many points of no entry.
template <class Move>
void ForEachSample(int32_t entries, int32_t points, Move move) {
    if (entries <= 0) return;
    ptrdiff_t index = 0;
    for (int32_t p = 0; p < points; ++p) {
        for (int32_t c = 0; c < entries; ++c) move(index++, c, p);
    }
}

// Whether no array shares memory with the stream: what is written may then be read at any time.
bool AreApart(const uint16_t* interleaved, uint16_t* const* perEntry, int32_t entries,
              int32_t points) {
    const std::less_equal<const uint16_t*> reachesOnlyTo;
    const uint16_t* end = interleaved + ptrdiff_t{points} * entries;
    for (int32_t c = 0; c < entries; ++c) {
        const bool apart =
            reachesOnlyTo(perEntry[c] + points, interleaved) || reachesOnlyTo(end, perEntry[c]);
        if (!apart) return false;
        for (int32_t other = 0; other < c; ++other) {
            if (!(reachesOnlyTo(perEntry[c] + points, perEntry[other]) ||
                  reachesOnlyTo(perEntry[other] + points, perEntry[c]))) {
                return false;
            }
        }
    }
    return true;
}

bool HasFixedForm(const uint16_t* interleaved, uint16_t* const* perEntry, int32_t entries,
                  int32_t points) {
    return entries >= 1 && entries <= ITC_CHANNELS && points >= 1 &&
           AreApart(interleaved, perEntry, entries, points);
}

}  // namespace
}  // namespace corvantis

void ITCInterleaveData(uint16_t* interleaved, uint16_t* const* perEntry, int32_t entries,
                       int32_t points) {
    if (corvantis::HasFixedForm(interleaved, perEntry, entries, points)) {
        corvantis::InterleaveFixed(interleaved, perEntry, entries, points);
        return;
    }
    corvantis::ForEachSample(entries, points, [=](ptrdiff_t index, int32_t c, int32_t p) {
        interleaved[index] = perEntry[c][p];
    });
}

void ITCSplitData(const uint16_t* interleaved, uint16_t* const* perEntry, int32_t entries,
                  int32_t points) {
    if (corvantis::HasFixedForm(interleaved, perEntry, entries, points)) {
        corvantis::SplitFixed(interleaved, perEntry, entries, points);
        return;
    }
    corvantis::ForEachSample(entries, points, [=](ptrdiff_t index, int32_t c, int32_t p) {
        perEntry[c][p] = interleaved[index];
    });
}
