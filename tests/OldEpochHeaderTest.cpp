// Epoch headers of files of version 6 and older, which store no latency.
#include <gtest/gtest.h>

#include <cstdint>

#include "Corvantis.h"
#include "FileBytes.h"

namespace {

using namespace corvantis_test;

// Expected: index of the first dynamic clamp, or the entries, + 2 * entries + 5.
struct LatencyCase {
    int32_t entries;
    uint16_t latency;
    Bytes bytesFromTypes;  // the stimulus types, then on into the unit names
};

TEST(EpochHeaderOfOldFiles, HasALatencyFromItsSequence) {
    const LatencyCase cases[] = {
        {3, 12, {1, 11, 1}},
        {3, 13, {1, 1, 11}},
        {2, 11, {1, 2}},
        {2, 11, {1, 2, 11}},
        {2, 9, {11, 11}},
        {1, 8, {3}},
        {1, 7, {11}},
        {4, 17, {1, 1, 1, 1, 11}},
        {0, 5, {1, 11}},
        {-2, 1, {1, 11}},
        {-3, 65535, {}},
        {5, 19, {1, 1, 1, 1, 11}},            // first letter of the first output unit
        {6, 22, {1, 1, 1, 1, 'p', 11}},       // 5 + 12 + 5
        {6, 23, {1, 1, 1, 1, 'p', 'A', 11}},  // 6 + 12 + 5
        {100000, 37861, {1, 1, 1, 1}},        // 300005 modulo 65536
        {INT32_MAX, 2, {1, 1, 1, 1, 'p'}},    // 3 * 65535 + 5 modulo 65536
        {INT32_MIN, 5, {1, 11}},
    };
    for (const LatencyCase& each : cases) {
        Bytes file(912);
        Put(file, 580, Big32(static_cast<uint32_t>(each.entries)));
        Put(file, 605, each.bytesFromTypes);
        Put(file, 888, Hex("1234"));
        for (const int32_t version : {6, 5, 1, 0, -128}) {
            ITCEpochHeader header{};
            EXPECT_TRUE(Read_ITCEpochHeader(StreamOver(file).get(), &header, version));
            EXPECT_EQ(header.pointsLatency, each.latency) << each.entries << ", " << version;
        }
        for (const int32_t version : {7, 8, 9, 127}) {
            ITCEpochHeader header{};
            EXPECT_TRUE(Read_ITCEpochHeader(StreamOver(file).get(), &header, version));
            EXPECT_EQ(header.pointsLatency, 0x1234) << version;
        }
    }
}

TEST(EpochHeaderOfOldFiles, NeedsAllItsBytesToo) {
    for (size_t size = 880; size <= 912; ++size) {
        ITCEpochHeader header{};
        EXPECT_EQ(Read_ITCEpochHeader(StreamOver(Bytes(size)).get(), &header, 6), size == 912);
    }
}

}  // namespace
