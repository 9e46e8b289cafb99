// Saves that are refused, fail or go far: no epoch but the failed one may suffer.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <functional>
#include <string>
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
    // The numbers of the epochs that a fresh opening can read whole.
    std::vector<int32_t> ReadableEpochs(const std::string& file) {
        std::vector<int32_t> numbers;
        ITCCloseFile();
        EXPECT_EQ(ITCOpenFile(file.c_str()), ITC_SUCCESS);
        for (int32_t epoch = 0; epoch < filehdr->numEpochs; ++epoch) {
            if (ITCRetrieveEpoch(epoch) != ITC_SUCCESS) continue;
            const auto number = static_cast<int32_t>(epochhdr->epochTime);
            const auto samples = static_cast<size_t>(epochhdr->epochPoints) *
                                 static_cast<size_t>(epochhdr->sequenceLength);
            EXPECT_EQ(First(session.input, samples),
                      Samples(samples, static_cast<uint16_t>(number)));
            numbers.push_back(number);
        }
        return numbers;
    }
};

// A save that cannot succeed says so before it touches anything.
TEST_F(SavingUnderDifficulties, RefusalsChangeNothing) {
    SetUpPulseEpoch();
    ASSERT_EQ(Create(), ITC_SUCCESS);
    ASSERT_EQ(ITCSaveToFile(), ITC_SUCCESS);
    const Bytes saved = FileContent(path);
    const auto expectRefused = [&](const char* reason) {
        EXPECT_EQ(ITCSaveToFile(), ITC_FILE_ERROR) << reason;
        EXPECT_EQ(filehdr->numEpochs, 1) << reason;
        EXPECT_EQ(FileContent(path), saved) << reason;
    };
    SetUpPulseEpoch(3);
    *ITCbufsize = 10;
    expectRefused("12 samples, input buffer of 10");
    for (const int32_t entries : {5, -1, 49152}) {
        epochhdr->sequenceLength = entries;
        expectRefused("impossible sequence");
    }
    SetUpPulseEpoch();
    epochhdr->epochPoints = -1;
    expectRefused("impossible length");
    SetUpPulseEpoch();
    EpochPosition[1] = 0xFFFFFFF0;
    expectRefused("end beyond 4 GiB");
    EpochPosition[1] = 1532;
    EXPECT_EQ(ITCCloseFile(), 0);
    expectRefused("closed file");
    ASSERT_EQ(Open(), ITC_SUCCESS);
    expectRefused("file open for reading");
    ITCCloseFile();
    ASSERT_EQ(Create(), ITC_SUCCESS);
    std::filesystem::rename(path, folder.File("renamed"));
    EXPECT_EQ(ITCSaveToFile(), ITC_SUCCESS);
    std::filesystem::remove(folder.File("renamed"));
    EXPECT_EQ(ITCSaveToFile(), ITC_FILE_ERROR);
    EXPECT_EQ(filehdr->numEpochs, 2);
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
    ASSERT_EQ(Create(), ITC_SUCCESS);
    ASSERT_EQ(Create(), ITC_SUCCESS) << "the program itself may";
    ASSERT_EQ(ITCSaveToFile(), ITC_SUCCESS);
    const Bytes saved = FileContent(path);
    const auto create = [this] { return Create(); };
    EXPECT_EQ(ResultElsewhere(create), ITC_FILE_ERROR);
    EXPECT_EQ(ResultElsewhere([&] { return ITCOpenFileForEdit(path.c_str()); }), ITC_FILE_ERROR);
    EXPECT_EQ(ResultElsewhere([this] { return Open(); }), ITC_SUCCESS) << "may be read";
    EXPECT_EQ(ResultElsewhere(create), ITC_FILE_ERROR);
    EXPECT_EQ(FileContent(path), saved);
    EXPECT_NE(fcntl(fileno(ITCOpenFilePtr), F_GETFD) & FD_CLOEXEC, 0);
    EXPECT_EQ(ITCCloseFile(), 0);
    EXPECT_EQ(ResultElsewhere(create), ITC_SUCCESS);
}

// An epoch lost to a missing stimulus must not take another one with it.
TEST_F(SavingUnderDifficulties, AFailedSaveIsCountedAndSparesItsNeighbours) {
    ASSERT_EQ(Create(), ITC_SUCCESS);
    ITCSummedParameters missing{.count = 2, .componentType = {3, 3}, .components = {}};
    const std::function<void()> spoilers[] = {
        [] { ITCFreeParams(1); },
        [] { epochhdr->stimType[1] = 0; },
        [] { epochhdr->stimType[1] = 15; },
        [&] { EXPECT_EQ(ITCSummedParams(1, &missing), 0); },
        [] { EXPECT_EQ(InstallSum(1, 2), 0); },
    };
    int32_t epochs = 0;
    std::vector<int32_t> expected;
    for (const auto& spoil : spoilers) {
        SetUpPulseEpoch(2);
        ASSERT_EQ(SaveEpoch(epochs), ITC_SUCCESS);
        spoil();
        EXPECT_EQ(SaveEpoch(99), ITC_FILE_ERROR);
        expected.insert(expected.end(), {epochs, epochs + 2});  // the next has the place of both
        epochs += 2;
        EXPECT_EQ(filehdr->numEpochs, epochs);
    }
    SetUpPulseEpoch(2);
    ASSERT_EQ(SaveEpoch(epochs), ITC_SUCCESS);
    expected.push_back(epochs);
    EXPECT_EQ(ReadableEpochs(path), expected);
}

// Looking at an earlier epoch during the experiment moves the stream into the middle of the data.
TEST_F(SavingUnderDifficulties, AppendsAlsoAfterReadingBack) {
    ASSERT_EQ(Create(), ITC_SUCCESS);
    for (const int32_t epoch : {0, 1, 2, 3, 4}) {
        SetUpPulseEpoch();
        ASSERT_EQ(SaveEpoch(epoch), ITC_SUCCESS);
        ASSERT_EQ(ITCRetrieveEpoch(0), ITC_SUCCESS);
    }
    EXPECT_EQ(ReadableEpochs(path), (std::vector<int32_t>{0, 1, 2, 3, 4}));
}

// No file may grow beyond so many bytes while this lives, as on a full disk.
class FullDisk {
  public:
    explicit FullDisk(int64_t size) : formerAction(signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &former);
        const rlimit limit{static_cast<rlim_t>(size), former.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;
    ~FullDisk() {
        setrlimit(RLIMIT_FSIZE, &former);
        signal(SIGXFSZ, formerAction);
    }

  private:
    void (*formerAction)(int);
    rlimit former{};
};

// Wherever the disk fills up, from the first byte that the second epoch needs to the last one that
// it and its table fill: the file is as it was, to the byte, and further epochs can be saved as
// soon as there is room.
TEST_F(SavingUnderDifficulties, AFullDiskCostsOnlyTheEpochsThatFoundNoRoom) {
    for (const int64_t points : {4, 5000}) {  // within one buffer of the stream, and beyond
        const int64_t epoch = 912 + 32 + 2 * points;
        for (const int64_t room : {int64_t{4}, int64_t{5}, int64_t{911}, int64_t{912}, int64_t{943},
                                   int64_t{945}, epoch - 1, epoch, epoch + 1, epoch + 7}) {
            SCOPED_TRACE(testing::Message() << points << " points, room for " << room);
            const ITCPulseParameters pulse{5, 0, static_cast<int32_t>(points), 0, 0, {}};
            SetUpAcquisition(1, static_cast<int32_t>(points));
            ASSERT_EQ(ITCPulseParams(0, &pulse), ITC_SUCCESS);
            filehdr->numEpochs = 0;
            EpochPosition[0] = 580;
            ASSERT_EQ(Create(), ITC_SUCCESS);
            ASSERT_EQ(SaveEpoch(1), ITC_SUCCESS);
            const Bytes saved = FileContent(path);
            {
                const FullDisk full(580 + epoch + room);
                ASSERT_EQ(SaveEpoch(2), ITC_FILE_ERROR);
                ASSERT_EQ(SaveEpoch(3), ITC_FILE_ERROR);
            }
            EXPECT_EQ(FileContent(path), saved);
            ASSERT_EQ(SaveEpoch(4), ITC_SUCCESS);
            ASSERT_EQ(SaveEpoch(5), ITC_SUCCESS);
            // The failed epochs' numbers read as the one that took their place.
            EXPECT_EQ(ReadableEpochs(path), (std::vector<int32_t>{1, 4, 4, 4, 5}));
            ITCCloseFile();
        }
    }
    const FullDisk full(100);
    EXPECT_EQ(Create(), ITC_FILE_ERROR);
    EXPECT_EQ(ITCSaveToFile(), ITC_FILE_ERROR);
    EXPECT_EQ(ITCCloseFile(), -1);
}

TEST_F(SavingUnderDifficulties, GoesOnBeyondTwoGibibytes) {
    SetUpPulseEpoch();
    ASSERT_EQ(Create(), ITC_SUCCESS);
    const uint32_t start = 0xC0000000;
    EpochPosition[0] = start;
    ASSERT_EQ(fseek(ITCOpenFilePtr, 0x60000000, SEEK_SET), 0);
    ASSERT_EQ(fseek(ITCOpenFilePtr, 0x60000000, SEEK_CUR), 0);
    ASSERT_EQ(SaveEpoch(7), ITC_SUCCESS);
    EXPECT_EQ(static_cast<uint32_t>(filehdr->epochTablePosition), start + 952);
    EXPECT_EQ(ReadableEpochs(path), std::vector<int32_t>{7});
    EXPECT_EQ(EpochPosition[0], start);
}

}  // namespace
