// Memory: it runs out at every allocation in turn, of a recording and of a reading session, and
// what a file can make the library take of it is bounded by the file's size.
#include <gtest/gtest.h>
#include <malloc.h>

#include <algorithm>
#include <cstdlib>
#include <set>
#include <vector>

#include "Corvantis.h"
#include "FileBytes.h"
#include "LibrarySession.h"
#include "PulseEpoch.h"

namespace {

int64_t failing = 0, asked = 0;
int64_t live = 0, bytesInUse = 0, peakBytes = 0;

}  // namespace

// In place of the library's pair for this program. The allocation with the number `failing`,
// counted from 1, fails.
void* ITCMalloc(size_t /*count*/, size_t size) {
    if (++asked == failing) return nullptr;
    void* const block = std::malloc(size);
    ++live;
    bytesInUse += static_cast<int64_t>(malloc_usable_size(block));
    peakBytes = std::max(peakBytes, bytesInUse);
    return block;
}
int32_t ITCFree(void* block) {
    if (block != nullptr) --live;
    bytesInUse -= static_cast<int64_t>(malloc_usable_size(block));
    std::free(block);
    return ITC_SUCCESS;
}

namespace corvantis_test {
namespace {

constexpr int32_t kPoints = 32, kEpochs = 4, kCapacity = 1000;
const ITCPulseParameters kHalf = {1000, 5, 16, 8, 8, {}};
const ITCNoiseParameters kNoise = {500, 5, 3, 16, 8, 8, 0, 1000, 1};
const std::set<int32_t> kDocumented = {ITC_SUCCESS, ITC_STIMULUS_ERROR, ITC_OUT_OF_MEMORY,
                                       ITC_FILE_ERROR};

// Whether it came to the allocation that was to fail.
template <class Call>
bool FailsAllocation(int64_t number, Call call) {
    failing = number;
    asked = 0;
    call();
    failing = 0;
    return asked >= number;
}

// Records what it can; the numbers of the epochs whose saving succeeded, each in time and sample.
std::vector<int32_t> RecordEpochs(const std::string& path) {
    std::vector<int32_t> saved;
    epochhdr = nullptr;  // an ending leaves them where they were
    filehdr = nullptr;
    EpochPosition = nullptr;
    const LibrarySession session(2 * kPoints, true);
    const QuietOutput quiet;
    EXPECT_TRUE(session.result == ITC_SUCCESS || session.result == ITC_OUT_OF_MEMORY);
    if (session.result != ITC_SUCCESS) return saved;
    SetUpAcquisition(2, kPoints);
    EXPECT_EQ(ITCCreateFile(path.c_str(), 1), ITC_SUCCESS);
    for (int32_t epoch = 0; epoch < kEpochs; ++epoch) {
        const int32_t added = InstallSum(0, 2) == ITC_SUCCESS ? ITCAddPulseParams(0, &kHalf) : 0;
        const auto* sum = static_cast<const ITCSummedParameters*>(StmParameters[0]);
        EXPECT_TRUE(added == 0 || sum->componentType[0] == 3) << "it has its type";
        if (added == ITC_SUCCESS) ITCAddNoiseParams(0, &kNoise);
        ITCNoiseParams(1, &kNoise);
        EXPECT_TRUE(kDocumented.contains(ITCUpdateStm()));
        epochhdr->epochTime = static_cast<float>(epoch);
        session.inputBuffer[0] = static_cast<uint16_t>(epoch);
        const int32_t result = ITCSaveToFile();
        EXPECT_TRUE(kDocumented.contains(result));
        if (result == ITC_SUCCESS) saved.push_back(epoch);
    }
    return saved;
}

TEST(AllocationFailure, CostsARecordingNoEpochThatWasSaved) {
    const TemporaryFolder folder;
    const std::string path = folder.File("data.itc");
    const int64_t before = live;
    bool failed = true;
    for (int64_t number = 1; failed; ++number) {
        SCOPED_TRACE(number);
        std::vector<int32_t> saved;
        failed = FailsAllocation(number, [&] { saved = RecordEpochs(path); });
        EXPECT_EQ(live, before);
        EXPECT_TRUE(failed || saved.size() == kEpochs);
        if (saved.empty()) continue;
        const LibrarySession reading(2 * kPoints);
        const QuietOutput quiet;
        ASSERT_EQ(ITCOpenFile(path.c_str()), ITC_SUCCESS);
        std::set<int32_t> found;
        for (int32_t epoch = 0; epoch < ITCGetNumEpochs(); ++epoch) {
            if (ITCRetrieveEpoch(epoch) == 0 && epochhdr->epochTime == reading.inputBuffer[0])
                found.insert(reading.inputBuffer[0]);
            FreeChannels();
        }
        for (const int32_t epoch : saved) EXPECT_TRUE(found.contains(epoch)) << epoch;
    }
}

// The place of an epoch that its table had no room for goes to the next one. A file wave counts 8
// bytes that are not written, so that this is not where the file ends.
TEST(AllocationFailure, OfTheTableLeavesTheNextEpochItsPlace) {
    const TemporaryFolder folder;
    const LibrarySession session(4);
    const QuietOutput quiet;
    SetUpAcquisition(1, 4);
    const ITCFilewaveParameters wave{session.inputBuffer, 4};
    EXPECT_EQ(Results({ITCFilewaveParams(0, &wave), ITCCreateFile(folder.File("x").c_str(), 1),
                       ITCSaveToFile(), ITCSaveToFile()}),
              Results(4));
    const auto save = [] { EXPECT_EQ(ITCSaveToFile(), ITC_OUT_OF_MEMORY); };
    EXPECT_TRUE(FailsAllocation(1, save));
    EXPECT_EQ(ITCSaveToFile(), ITC_SUCCESS);
    EXPECT_EQ(EpochPosition[3], 580 + 2 * (912 + 8 + 8));
}

TEST(AllocationFailure, GivesADocumentedCodeWhileReading) {
    const TemporaryFolder folder;
    const std::string path = folder.File("data.itc");
    ASSERT_EQ(RecordEpochs(path).size(), size_t{kEpochs});
    int32_t result = ITC_OUT_OF_MEMORY;
    const auto readEverything = [&] {
        const QuietOutput quiet;
        uint16_t samples[2 * kPoints];
        if ((result = ITCInitializeAnalysis(2 * kPoints)) != ITC_SUCCESS) return;
        result = ITCOpenFileForInput(path.c_str());
        for (int32_t epoch = 0; result == ITC_SUCCESS && epoch < 2 * kEpochs; ++epoch) {
            result = (epoch % 2 == 0 ? ITCReadEpoch : ITCReadEpochStm)(epoch / 2, samples);
            FreeChannels();
        }
        ITCCloseOpenFile();
        ITCFinishAnalysis();
    };
    for (int64_t number = 1; result != ITC_SUCCESS; ++number) {
        const bool failed = FailsAllocation(number, readEverything);
        EXPECT_TRUE(kDocumented.contains(result) && (result != ITC_SUCCESS) == failed) << number;
    }
}

// A damaged count of points, entries, types, components or a component's points.
TEST(MemoryBound, HoldsForEveryCountOfTheFile) {
    const TemporaryFolder folder;
    const std::string path = folder.File("data.itc");
    const LibrarySession session(kCapacity);
    const QuietOutput quiet;
    const Bytes two = Join({Big32(2), Bytes(256, 2), Bytes(1024 + 2 * 36 + 64)});
    for (const size_t place : {536, 1156, 1160, 1185, 1492, 1496, 2788}) {
        for (const uint32_t value : {0x7FFFFFFFU, 0xFFFFFFFFU, 256U, 999U}) {
            Bytes damaged = DataFileBytes({Join({EpochHeaderBytes(100, 32, {7}), two})});
            Put(damaged, place, Big32(value));
            WriteFile(path, damaged);
            const int64_t before = peakBytes = bytesInUse;
            ITCOpenFile(path.c_str());
            ITCRetrieveEpochStm(0);
            FreeChannels();
            EXPECT_LE(peakBytes - before, 70000 + 120 * kCapacity);
            ITCCloseFile();
        }
    }
}

}  // namespace
}  // namespace corvantis_test
