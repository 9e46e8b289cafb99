// Saves that are refused, fail or go far: no epoch but the failed one may suffer.
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "Corvantis.h"
#include "FileBytes.h"
#include "LibrarySession.h"
#include "PulseEpoch.h"

namespace {

using namespace corvantis_test;

class SavingUnderDifficulties : public RecordingTest {
  protected:
    // Every sample is the epoch's number.
    int32_t SaveEpoch(int32_t number) {
        epochhdr->epochTime = static_cast<float>(number);
        session.input.assign(session.input.size(), static_cast<uint16_t>(number));
        return ITCSaveToFile();
    }
    // What a fresh opening reads.
    void ExpectEpochs(const std::vector<int32_t>& numbers) {
        ITCCloseFile();
        EXPECT_EQ(Open(), ITC_SUCCESS);
        std::vector<int32_t> found;
        while (ITCRetrieveEpoch(static_cast<int32_t>(found.size())) == ITC_SUCCESS) {
            found.push_back(static_cast<int32_t>(epochhdr->epochTime));
            const size_t samples = epochhdr->epochPoints * epochhdr->sequenceLength;
            EXPECT_EQ(First(session.input, samples), Samples(samples, found.back() & 0xFFFF));
        }
        EXPECT_EQ(found, numbers);
    }
};

// A save that cannot succeed says so before it touches anything.
TEST_F(SavingUnderDifficulties, RefusalsChangeNothing) {
    SetUpPulseEpoch(3);
    ASSERT_EQ(Results({Create(), ITCSaveToFile()}), Results(2));
    const Bytes saved = FileContent(path);
    const ITCEpochHeader sound = *epochhdr;
    const std::function<void()> spoilers[] = {
        [] { *ITCbufsize = 11; },  // of 12 samples
        [] { epochhdr->sequenceLength = 5; }, [] { epochhdr->sequenceLength = -1; },
        [] { epochhdr->epochPoints = -1; },
        [] { EpochPosition[1] = 0xFFFFFFFF - 1032 + 1; }};  // the end beyond 4 GiB
    for (const auto& spoil : spoilers) {
        spoil();
        EXPECT_EQ(ITCSaveToFile(), ITC_FILE_ERROR) << &spoil - spoilers;
        EXPECT_TRUE(filehdr->numEpochs == 1 && FileContent(path) == saved);
        *epochhdr = sound;
        *ITCbufsize = 65536;
        EpochPosition[1] = 580 + 1032;
    }
    EXPECT_EQ(Results({ITCCloseFile(), ITCSaveToFile(), Open(), ITCSaveToFile()}),
              Results({0, 7, 0, 7}));
    EXPECT_TRUE(filehdr->numEpochs == 1 && FileContent(path) == saved);
    ASSERT_EQ(Create(), ITC_SUCCESS);
    std::filesystem::rename(path, folder.File("renamed"));
    EXPECT_EQ(ITCSaveToFile(), ITC_SUCCESS);
    std::filesystem::remove(folder.File("renamed"));
    EXPECT_EQ(ITCSaveToFile(), ITC_FILE_ERROR);
}

// What another program gets that wants to record into the file.
int32_t ResultElsewhere(const std::function<int32_t()>& call) {
    const pid_t child = fork();
    if (child == 0) _exit(call());
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    return WEXITSTATUS(status);
}

TEST_F(SavingUnderDifficulties, OneProgramRecordsAFile) {
    SetUpPulseEpoch();
    const auto create = [this] { return Create(); };
    ASSERT_EQ(Results({create(), create(), ITCSaveToFile()}), Results(3)) << "itself it may";
    const Bytes saved = FileContent(path);
    const auto edit = [this] { return ITCOpenFileForEdit(path.c_str()); };
    const auto read = [this] { return Open(); };
    EXPECT_EQ(Results({ResultElsewhere(create), ResultElsewhere(edit), ResultElsewhere(read),
                       ResultElsewhere(create)}),
              Results({7, 7, 0, 7}));
    EXPECT_EQ(FileContent(path), saved);
    EXPECT_EQ(ITCCloseFile(), 0);
    EXPECT_EQ(ResultElsewhere(create), ITC_SUCCESS);
}

// An epoch lost to a missing stimulus must not take another one with it. Looks at earlier epochs
// in between move the stream into the middle of the data.
TEST_F(SavingUnderDifficulties, AFailedSaveIsCountedAndSparesItsNeighbours) {
    ASSERT_EQ(Create(), ITC_SUCCESS);
    const std::function<void()> spoilers[] = {
        [] { ITCFreeParams(1); }, [] { epochhdr->stimType[1] = 0; },
        [] { epochhdr->stimType[1] = 15; }, [] { EXPECT_EQ(InstallSum(1, 2), 0); }};
    const std::function<void()> looks[] = {
        [] { ITCRetrieveEpoch(0); }, [] { ITCRetrieveEpochStm(1); }, [] { ITCReadStmParams(0); },
        [] {
            const uint32_t place = std::exchange(EpochPosition[0], 1 << 30);
            ITCEpochParameters(0);
            EpochPosition[0] = place;
        }};
    std::vector<int32_t> expected;
    for (const auto& spoil : spoilers) {
        for (const auto& look : looks) {
            const int32_t epoch = filehdr->numEpochs;
            SetUpPulseEpoch(2);
            ASSERT_EQ(SaveEpoch(epoch), ITC_SUCCESS);
            look();
            SetUpPulseEpoch(2);
            spoil();
            EXPECT_EQ(SaveEpoch(99), ITC_FILE_ERROR);
            look();
            expected.insert(expected.end(), {epoch, epoch + 2});  // the next has the place of both
            EXPECT_EQ(filehdr->numEpochs, epoch + 2);
        }
    }
    expected.pop_back();  // nothing has taken the last one's place
    ExpectEpochs(expected);
}

// No file may grow beyond so many bytes meanwhile, as on a full disk.
void WithDiskOf(int64_t size, const std::function<void()>& call) {
    const auto formerAction = signal(SIGXFSZ, SIG_IGN);
    rlimit former{};
    getrlimit(RLIMIT_FSIZE, &former);
    const rlimit limit{static_cast<rlim_t>(size), former.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
    call();
    setrlimit(RLIMIT_FSIZE, &former);
    signal(SIGXFSZ, formerAction);
}

// Wherever the disk fills up, from the first byte that the second epoch needs to the last one that
// it and its table fill: the file is as it was, to the byte, and further epochs can be saved as
// soon as there is room. The failed epochs' numbers read as the one that took their place.
TEST_F(SavingUnderDifficulties, AFullDiskCostsOnlyTheEpochsThatFoundNoRoom) {
    for (const int32_t points : {4, 5000}) {  // within one buffer of the stream, and beyond
        const int64_t epoch = 912 + 32 + 2 * points;
        for (const int64_t room : {int64_t{4}, int64_t{911}, int64_t{912}, int64_t{943},
                                   int64_t{945}, epoch - 1, epoch, epoch + 1, epoch + 7}) {
            SCOPED_TRACE(testing::Message() << points << " points, room for " << room);
            const ITCPulseParameters pulse{5, 0, points, 0, 0, {}};
            SetUpAcquisition(1, points);
            ASSERT_EQ(ITCPulseParams(0, &pulse), ITC_SUCCESS);
            filehdr->numEpochs = 0;
            EpochPosition[0] = 580;
            ASSERT_EQ(Results({Create(), SaveEpoch(1)}), Results(2));
            const Bytes saved = FileContent(path);
            WithDiskOf(580 + epoch + room, [this] {
                ASSERT_EQ(Results({SaveEpoch(2), SaveEpoch(3)}), Results({7, 7}));
            });
            EXPECT_EQ(FileContent(path), saved);
            ASSERT_EQ(Results({SaveEpoch(4), SaveEpoch(5)}), Results(2));
            ExpectEpochs({1, 4, 4, 4, 5});
        }
    }
    WithDiskOf(100, [this] { EXPECT_EQ(Create(), ITC_FILE_ERROR); });
    EXPECT_EQ(ITCSaveToFile(), ITC_FILE_ERROR);
    EXPECT_EQ(ITCCloseFile(), -1);
}

}  // namespace
