// Memory runs out at every allocation in turn, of a recording and of a reading session: each call
// gives a documented code, nothing that was saved is damaged, and no block is lost.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <vector>

#include "Corvantis.h"
#include "FailingAllocations.h"
#include "LibrarySession.h"

namespace corvantis_test {
namespace {

constexpr int32_t kPoints = 32;
constexpr int32_t kEpochs = 4;
const ITCPulseParameters kPulse = {1000, 5, 16, 8, 8, {}};
const ITCNoiseParameters kNoise = {500, 5, 3, 16, 8, 8, 0, 1000, 1};

template <class... Block>
void Drop(Block*&... block) {
    (ITCFree(block), ...);
    ((block = nullptr), ...);
}

// A session that ends its library properly however far it came.
class RecordingSession {
  public:
    RecordingSession() {
        // An ending leaves them where they were.
        epochhdr = nullptr;
        filehdr = nullptr;
        EpochPosition = nullptr;
        ITCbufsize = nullptr;
        const int32_t capacity = kPoints * 2;
        result = ITCInit(&inputBuffer, &outputBuffer, &capacity, 0);
    }
    RecordingSession(const RecordingSession&) = delete;
    RecordingSession& operator=(const RecordingSession&) = delete;
    ~RecordingSession() {
        ITCCloseFile();
        FreeChannels();
        // A start-up that failed leaves its blocks to whoever starts the program again.
        if (ITCFinish() != ITC_SUCCESS) Drop(epochhdr, filehdr, EpochPosition);
        Drop(ITCbufsize, itc);
    }
    int32_t result;

  private:
    std::array<uint16_t, kPoints* 2> input = {};
    std::array<uint16_t, kPoints* 2> output = {};
    uint16_t* inputBuffer = input.data();
    uint16_t* outputBuffer = output.data();
};

void ExpectOneOf(int32_t result, std::initializer_list<int32_t> codes) {
    EXPECT_NE(std::find(codes.begin(), codes.end(), result), codes.end()) << result;
}

int32_t BuildSum() {
    const int32_t built = InstallSum(0, 2);
    if (built != ITC_SUCCESS) return built;
    const int32_t first = ITCAddPulseParams(0, &kPulse);
    return first == ITC_SUCCESS ? ITCAddNoiseParams(0, &kNoise) : first;
}

// Records what it can into the file; returns the numbers of the epochs whose saving succeeded.
std::vector<int32_t> RecordEpochs(const std::string& path) {
    std::vector<int32_t> saved;
    const RecordingSession session;
    ExpectOneOf(session.result, {ITC_SUCCESS, ITC_OUT_OF_MEMORY});
    if (session.result != ITC_SUCCESS) return saved;
    EXPECT_EQ(ITCSetSeq("01", "01"), ITC_SUCCESS);
    EXPECT_EQ(ITCSetAcqParams(200, kPoints, 0, 0), ITC_SUCCESS);
    EXPECT_EQ(ITCCreateFile(path.c_str(), 1), ITC_SUCCESS);
    for (int32_t epoch = 0; epoch < kEpochs; ++epoch) {
        ExpectOneOf(BuildSum(), {ITC_SUCCESS, ITC_OUT_OF_MEMORY, ITC_STIMULUS_ERROR});
        ExpectOneOf(ITCNoiseParams(1, &kNoise), {ITC_SUCCESS, ITC_OUT_OF_MEMORY});
        ExpectOneOf(ITCUpdateStm(), {ITC_SUCCESS, ITC_STIMULUS_ERROR, ITC_OUT_OF_MEMORY});
        epochhdr->epochTime = static_cast<float>(epoch);
        (*ITCInputBuffer)[0] = static_cast<uint16_t>(1000 + epoch);
        const int32_t result = ITCSaveToFile();
        ExpectOneOf(result, {ITC_SUCCESS, ITC_FILE_ERROR, ITC_OUT_OF_MEMORY});
        if (result == ITC_SUCCESS) saved.push_back(epoch);
    }
    return saved;
}

// How often an epoch with this number is found in the file, and whether its samples came back too.
int CountEpoch(int32_t number) {
    int found = 0;
    for (int32_t epoch = 0; epoch < ITCGetNumEpochs(); ++epoch) {
        if (ITCRetrieveEpoch(epoch) != ITC_SUCCESS) continue;
        const bool same = epochhdr->epochTime == static_cast<float>(number);
        if (same && (*ITCInputBuffer)[0] == 1000 + number) ++found;
        FreeChannels();
    }
    return found;
}

TEST(AllocationFailure, CostsARecordingNoEpochThatWasSaved) {
    const QuietOutput quiet;
    const TemporaryFolder folder;
    const std::string path = folder.File("data.itc");
    const int64_t before = LiveBlocks();
    bool failed = true;
    for (int64_t number = 1; failed; ++number) {
        SCOPED_TRACE(number);
        FailAllocation(number);
        const std::vector<int32_t> saved = RecordEpochs(path);
        failed = AllocationFailed();
        FailAllocation(0);
        EXPECT_EQ(LiveBlocks(), before);
        EXPECT_TRUE(failed || saved.size() == size_t{kEpochs});
        if (saved.empty()) continue;
        const RecordingSession reading;
        ASSERT_EQ(ITCOpenFile(path.c_str()), ITC_SUCCESS);
        for (const int32_t epoch : saved) EXPECT_GE(CountEpoch(epoch), 1) << epoch;
    }
}

// Opens, reads and recomputes; every failure is a documented code.
int32_t ReadEverything(const std::string& path) {
    int32_t worst = ITCInitializeAnalysis(kPoints * 2);
    if (worst != ITC_SUCCESS) return worst;
    std::array<uint16_t, kPoints * 2> samples;
    worst = ITCOpenFileForInput(path.c_str());
    for (int32_t epoch = 0; worst == ITC_SUCCESS && epoch < kEpochs; ++epoch) {
        worst = ITCReadEpoch(epoch, samples.data());
        FreeChannels();
        if (worst == ITC_SUCCESS) worst = ITCReadEpochStm(epoch, samples.data());
        FreeChannels();
    }
    ITCCloseOpenFile();
    ITCFinishAnalysis();
    return worst;
}

TEST(AllocationFailure, GivesADocumentedCodeWhileReading) {
    const QuietOutput quiet;
    const TemporaryFolder folder;
    const std::string path = folder.File("data.itc");
    ASSERT_EQ(RecordEpochs(path).size(), size_t{kEpochs});
    bool failed = true;
    for (int64_t number = 1; failed; ++number) {
        SCOPED_TRACE(number);
        FailAllocation(number);
        const int32_t result = ReadEverything(path);
        failed = AllocationFailed();
        FailAllocation(0);
        ExpectOneOf(result, {ITC_SUCCESS, ITC_STIMULUS_ERROR, ITC_OUT_OF_MEMORY, ITC_FILE_ERROR});
        EXPECT_EQ(result == ITC_SUCCESS, !failed);
    }
}

}  // namespace
}  // namespace corvantis_test
