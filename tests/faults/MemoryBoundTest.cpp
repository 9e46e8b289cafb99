// The memory that a file can make the library take is bounded by the file's size, whatever its
// counts say.
#include <gtest/gtest.h>

#include <vector>

#include "Corvantis.h"
#include "FailingAllocations.h"
#include "FileBytes.h"
#include "LibrarySession.h"
#include "PulseEpoch.h"

namespace corvantis_test {
namespace {

constexpr int32_t kCapacity = 1000;
constexpr int64_t kBuffers = 2 * sizeof(uint16_t) * kCapacity;
// Four sums of components that have no bytes in the file, at 256 records each.
constexpr int64_t kRecords = 65536;

class MemoryBound : public RecordingTest {
  protected:
    MemoryBound() : RecordingTest(kCapacity) {}
    // What opening the file and reading its first epochs adds at most to the memory in use.
    int64_t LargestUse(int32_t (*retrieve)(int32_t)) const {
        StartPeak();
        const int64_t before = PeakBytes();
        Open();
        for (const int32_t epoch : {0, 1}) {
            retrieve(epoch);
            FreeChannels();
        }
        const int64_t largest = PeakBytes() - before;
        ITCCloseFile();
        return largest;
    }

    const QuietOutput quiet;
};

TEST_F(MemoryBound, HoldsForEveryCountOfTheFile) {
    const ITCNoiseParameters noise = {500, 5, 3, 16, 8, 8, 0, 1000, 1};
    SetUpAcquisition(1, 32);
    ASSERT_EQ(Create(), ITC_SUCCESS);
    ASSERT_EQ(InstallSum(0, 2), ITC_SUCCESS);
    for (int i = 0; i < 2; ++i) ASSERT_EQ(ITCAddNoiseParams(0, &noise), ITC_SUCCESS);
    ASSERT_EQ(ITCSaveToFile(), ITC_SUCCESS);
    ITCCloseFile();
    ITCFreeParams(0);
    const Bytes sound = FileContent(path);
    const int64_t bound = 2 * static_cast<int64_t>(sound.size()) + kRecords;
    EXPECT_GT(LargestUse(ITCRetrieveEpoch), 0);
    EXPECT_GT(LargestUse(ITCRetrieveEpochStm), 0);
    // Epochs, table, points, entries, types, components, the components' types and points.
    const std::vector<size_t> counts = {536,  540,      1156,        1160,        1185,
                                        1492, 1492 + 4, 1492 + 1284, 1492 + 1296, 1492 + 1304};
    for (const size_t first : counts) {
        for (const size_t second : counts) {
            for (const uint32_t value :
                 {0x7FFFFFFFU, 0xFFFFFFFFU, 0x80000000U, 0x3FFFFFFFU, 256U, 1000U, 999U, 4U}) {
                Bytes damaged = sound;
                Put(damaged, first, Big32(value));
                Put(damaged, second, Big32(value / 2 + 1));
                WriteFile(path, damaged);
                SCOPED_TRACE(testing::Message()
                             << value << " at " << first << " and half of it at " << second);
                EXPECT_LE(LargestUse(ITCRetrieveEpoch), bound);
                EXPECT_LE(LargestUse(ITCRetrieveEpochStm), bound + 30 * kBuffers);
            }
        }
    }
}

TEST_F(MemoryBound, HoldsForComponentsWithoutBytes) {
    const Bytes sum = Join({Big32(256), Bytes(256, 8), Bytes(1024)});
    const Bytes epoch = Join(
        {EpochHeaderBytes(100, 4, {7, 7, 7, 7}), sum, sum, sum, sum, Bytes(size_t{2} * 4 * 4)});
    const auto table = static_cast<uint32_t>(580 + epoch.size());
    WriteFile(path, Join({FileHeaderBytes(8, 1, table), epoch, Big32(580)}));
    EXPECT_GT(LargestUse(ITCRetrieveEpoch), 1024 * 32);
    EXPECT_LE(LargestUse(ITCRetrieveEpoch), 2 * int64_t{table} + kRecords);
}

}  // namespace
}  // namespace corvantis_test
