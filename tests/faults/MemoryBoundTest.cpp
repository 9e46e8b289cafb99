// The memory that a file can make the library take is bounded by the file's size, whatever its
// counts say.
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include "Corvantis.h"
#include "FailingAllocations.h"
#include "FileBytes.h"
#include "LibrarySession.h"

namespace corvantis_test {
namespace {

constexpr int32_t kCapacity = 1000;
constexpr int64_t kBuffers = 2 * sizeof(uint16_t) * kCapacity;
// Four sums of components that have no bytes in the file, at 256 records each.
constexpr int64_t kRecords = 65536;

// One epoch that plays a sum of filtered noise.
Bytes Recording(const std::string& path) {
    const ITCNoiseParameters noise = {500, 5, 3, 16, 8, 8, 0, 1000, 1};
    ITCSummedParameters sum = {};
    sum.count = 2;
    EXPECT_EQ(ITCSetSeq("0", "0"), ITC_SUCCESS);
    EXPECT_EQ(ITCSetAcqParams(200, 32, 0, 0), ITC_SUCCESS);
    EXPECT_EQ(ITCCreateFile(path.c_str(), 1), ITC_SUCCESS);
    EXPECT_EQ(ITCSummedParams(0, &sum), ITC_SUCCESS);
    for (int i = 0; i < 2; ++i) EXPECT_EQ(ITCAddNoiseParams(0, &noise), ITC_SUCCESS);
    EXPECT_EQ(ITCSaveToFile(), ITC_SUCCESS);
    ITCCloseFile();
    ITCFreeParams(0);
    return FileContent(path);
}

// What opening the file and reading its first epochs adds at most to the memory in use.
int64_t LargestUse(const std::string& path, int32_t (*retrieve)(int32_t)) {
    StartPeak();
    const int64_t before = PeakBytes();
    ITCOpenFile(path.c_str());
    for (const int32_t epoch : {0, 1}) {
        retrieve(epoch);
        for (uint32_t channel = 0; channel < ITC_CHANNELS; ++channel) ITCFreeParams(channel);
    }
    const int64_t largest = PeakBytes() - before;
    ITCCloseFile();
    return largest;
}

TEST(MemoryBound, HoldsForEveryCountOfTheFile) {
    LibrarySession session(kCapacity);
    const QuietOutput quiet;
    const TemporaryFolder folder;
    const std::string path = folder.File("data.itc");
    const Bytes sound = Recording(path);
    const int64_t bound = 2 * static_cast<int64_t>(sound.size()) + kRecords;
    const int64_t boundOfWork = bound + 30 * kBuffers;
    EXPECT_GT(LargestUse(path, ITCRetrieveEpoch), 0);
    EXPECT_GT(LargestUse(path, ITCRetrieveEpochStm), 0);
    // Epochs, table, points, entries, components, the components' types and points.
    const size_t header = 580;
    const size_t record = header + 912;
    const std::vector<size_t> counts = {536,           540,          header + 576, header + 580,
                                        header + 605,  record,       record + 4,   record + 1284,
                                        record + 1296, record + 1304};
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
                EXPECT_LE(LargestUse(path, ITCRetrieveEpoch), bound);
                EXPECT_LE(LargestUse(path, ITCRetrieveEpochStm), boundOfWork);
            }
        }
    }
}

TEST(MemoryBound, HoldsForComponentsWithoutBytes) {
    LibrarySession session(kCapacity);
    const QuietOutput quiet;
    const TemporaryFolder folder;
    const std::string path = folder.File("data.itc");
    const Bytes sum = Join({Big32(256), Bytes(256, 8), Bytes(1024)});
    const Bytes epoch = Join(
        {EpochHeaderBytes(100, 4, {7, 7, 7, 7}), sum, sum, sum, sum, Bytes(size_t{2} * 4 * 4)});
    const auto table = static_cast<uint32_t>(580 + epoch.size());
    WriteFile(path, Join({FileHeaderBytes(8, 1, table), epoch, Big32(580)}));
    EXPECT_GT(LargestUse(path, ITCRetrieveEpoch), 1024 * 32);
    EXPECT_LE(LargestUse(path, ITCRetrieveEpoch), 2 * int64_t{table} + kRecords);
}

}  // namespace
}  // namespace corvantis_test
