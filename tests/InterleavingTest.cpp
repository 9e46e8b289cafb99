// Interleaving of per-entry samples and its inverse.
#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <utility>
#include <vector>

#include "Corvantis.h"
#include "ReferenceSamples.h"

namespace {

using corvantis_test::kUntouched;
using corvantis_test::Samples;
using corvantis_test::Written;

TEST(InterleavingTest, SplittingUndoesInterleaving) {
    std::mt19937 source(1);
    for (const auto& [entries, points] :
         {std::pair{1, 7}, std::pair{2, 1}, std::pair{3, 2}, std::pair{4, 500}, std::pair{9, 33}}) {
        const auto count = static_cast<size_t>(entries * points);
        std::vector<Samples> in(static_cast<size_t>(entries));
        std::vector<Samples> out(in.size(), Samples(static_cast<size_t>(points)));
        std::vector<uint16_t*> inPointers;
        std::vector<uint16_t*> outPointers;
        for (Samples& entry : in) {
            for (int32_t p = 0; p < points; ++p) entry.push_back(static_cast<uint16_t>(source()));
            inPointers.push_back(entry.data());
        }
        for (Samples& entry : out) outPointers.push_back(entry.data());
        const Samples stream = Written(count, [&, n = entries, p = points](uint16_t* buffer) {
            ITCInterleaveData(buffer, inPointers.data(), n, p);
        });
        for (size_t index = 0; index < count; ++index)
            ASSERT_EQ(stream[index], in[index % in.size()][index / in.size()]) << index;
        ITCSplitData(stream.data(), outPointers.data(), entries, points);
        EXPECT_EQ(out, in);
    }
}

TEST(InterleavingTest, NothingMovesWithoutEntriesOrPoints) {
    for (const auto& [entries, points] : {std::pair{0, 3}, std::pair{-2, 3}, std::pair{2, 0},
                                          std::pair{2, -1}, std::pair{INT32_MIN, INT32_MIN}}) {
        ITCInterleaveData(nullptr, nullptr, entries, points);
        ITCSplitData(nullptr, nullptr, entries, points);
        Samples entry(3, kUntouched);
        uint16_t* const pointers[2] = {entry.data(), entry.data()};
        const Samples stream = {1, 2, 3};
        ITCSplitData(stream.data(), pointers, entries, points);
        EXPECT_EQ(entry, Samples(3, kUntouched));
    }
}

}  // namespace
