// Interleaving beside one element at a time.
#include "SameBits.h"

namespace corvantis_test {
namespace {

// The arrays begin `distance` apart in one block, the stream at `start` of it: they may overlap.
void ExpectSameMoves(int32_t entries, int32_t points, size_t distance, size_t start) {
    for (const bool split : {false, true}) {
        Samples blocks[2];
        for (Samples& block : blocks) {
            for (uint32_t i = 0; i < 200000; ++i) block.push_back(uint16_t(i * 40503u >> 7));
            uint16_t* perEntry[6];
            for (size_t c = 0; c < 6; ++c) perEntry[c] = block.data() + c * distance;
            const bool library = &block == blocks;
            const auto join = library ? ITCInterleaveData : definition::Interleave;
            const auto part = library ? ITCSplitData : definition::Split;
            if (split) part(block.data() + start, perEntry, entries, points);
            if (!split) join(block.data() + start, perEntry, entries, points);
        }
        ExpectSame(blocks[0], blocks[1], entries, points, distance, start);
    }
}

TEST_F(ExactTest, InterleavingAlsoWhereArraysAndStreamOverlap) {
    for (int32_t entries = 0; entries <= 6; ++entries) {
        for (const int32_t points : {-1, 0, 1, 2, 7, 64, 10001}) {
            ExpectSameMoves(entries, points, 10001, 100000);
            for (const size_t distance : {10001, 10, 0})
                ExpectSameMoves(entries, points, distance, 4 * distance % 39);
        }
    }
}

}  // namespace
}  // namespace corvantis_test
