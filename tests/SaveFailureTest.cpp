// Saves that are refused, fail or go far: no epoch but the failed one may suffer.
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

#include "Corvantis.h"
#include "FileBytes.h"
#include "LibrarySession.h"
#include "PulseEpoch.h"

namespace {

using namespace corvantis_test;

// A save that cannot succeed says so before it touches anything.
TEST(SavingUnderDifficulties, RefusalsChangeNothing) {
    LibrarySession session(10);
    const TemporaryFolder folder;
    const std::string path = folder.File("data.itc");
    SetUpPulseEpoch();
    ASSERT_EQ(ITCCreateFile(path.c_str(), 0), ITC_SUCCESS);
    ASSERT_EQ(ITCSaveToFile(), ITC_SUCCESS);
    const Bytes saved = FileContent(path);
    const auto expectRefused = [&](const char* reason) {
        EXPECT_EQ(ITCSaveToFile(), ITC_FILE_ERROR) << reason;
        EXPECT_EQ(filehdr->numEpochs, 1) << reason;
        EXPECT_EQ(FileContent(path), saved) << reason;
    };
    SetUpPulseEpoch(3);
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
    ASSERT_EQ(ITCOpenFile(path.c_str()), ITC_SUCCESS);
    expectRefused("file open for reading");
}

// An epoch lost to a missing stimulus must not take another one with it.
TEST(SavingUnderDifficulties, AFailedSaveIsCountedAndSparesItsNeighbours) {
    LibrarySession session;
    const TemporaryFolder folder;
    const std::string path = folder.File("data.itc");
    ASSERT_EQ(ITCCreateFile(path.c_str(), 0), ITC_SUCCESS);
    ITCSummedParameters missing{.count = 2, .componentType = {3, 3}, .components = {}};
    ITCSummedParameters untyped{.count = 2, .componentType = {}, .components = {}};
    const std::function<void()> spoilers[] = {
        [] { ITCFreeParams(1); },
        [] { epochhdr->stimType[1] = 0; },
        [] { epochhdr->stimType[1] = 15; },
        [&] { EXPECT_EQ(ITCSummedParams(1, &missing), 0); },
        [&] { EXPECT_EQ(ITCSummedParams(1, &untyped), 0); },
    };
    int32_t epochs = 0;
    for (const auto& spoil : spoilers) {
        SetUpPulseEpoch(2);
        Acquire(session, Samples(8, static_cast<uint16_t>(epochs)));
        ASSERT_EQ(ITCSaveToFile(), ITC_SUCCESS);
        spoil();
        EXPECT_EQ(ITCSaveToFile(), ITC_FILE_ERROR);
        epochs += 2;
        EXPECT_EQ(filehdr->numEpochs, epochs);
    }
    SetUpPulseEpoch(2);
    ASSERT_EQ(ITCSaveToFile(), ITC_SUCCESS);
    ASSERT_EQ(ITCCloseFile(), 0);
    ASSERT_EQ(ITCOpenFile(path.c_str()), ITC_SUCCESS);
    ASSERT_EQ(filehdr->numEpochs, epochs + 1);
    for (int32_t epoch = 0; epoch < epochs; epoch += 2) {
        ASSERT_EQ(ITCRetrieveEpoch(epoch), ITC_SUCCESS);
        EXPECT_EQ(session.input[7], epoch);
    }
    EXPECT_EQ(ITCRetrieveEpoch(epochs), ITC_SUCCESS);
}

// Looking at an earlier epoch during the experiment moves the stream into the middle of the data.
TEST(SavingUnderDifficulties, AppendsAlsoAfterReadingBack) {
    LibrarySession session;
    const TemporaryFolder folder;
    ASSERT_EQ(ITCCreateFile(folder.File("data.itc").c_str(), 0), ITC_SUCCESS);
    for (uint16_t epoch = 0; epoch < 5; ++epoch) {
        SetUpPulseEpoch();
        Acquire(session, Samples(4, epoch));
        ASSERT_EQ(ITCSaveToFile(), ITC_SUCCESS);
        ASSERT_EQ(ITCRetrieveEpoch(0), ITC_SUCCESS);
    }
    for (int32_t epoch = 0; epoch < 5; ++epoch) {
        ASSERT_EQ(ITCRetrieveEpoch(epoch), ITC_SUCCESS);
        EXPECT_EQ(session.input[3], epoch);
    }
}

// No file may grow beyond so many bytes while this lives, as on a full disk.
class FullDisk {
  public:
    explicit FullDisk(rlim_t size) : formerAction(signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &former);
        const rlimit limit{size, former.rlim_max};
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

// Wherever the disk fills up, in the epoch or in its table: what was there before stays readable,
// and the next epoch can be saved as soon as there is room.
void ExpectOneEpochLost(int32_t points, rlim_t size) {
    SCOPED_TRACE(testing::Message() << points << " points, full at " << size);
    LibrarySession session;
    const TemporaryFolder folder;
    const std::string path = folder.File("data.itc");
    ASSERT_EQ(ITCCreateFile(path.c_str(), 0), ITC_SUCCESS);
    SetUpPulseEpoch();
    Acquire(session, {1, 2, 3, 4});
    ASSERT_EQ(ITCSaveToFile(), ITC_SUCCESS);
    const Bytes before = FileContent(path);
    const ITCPulseParameters pulse{5, 0, points, 0, 0, {}};
    SetUpAcquisition(1, points);
    ASSERT_EQ(ITCPulseParams(0, &pulse), ITC_SUCCESS);
    {
        const FullDisk full(size);
        EXPECT_EQ(ITCSaveToFile(), ITC_FILE_ERROR);
    }
    const Bytes after = FileContent(path);
    ASSERT_GE(after.size(), before.size());
    EXPECT_EQ(First(after, before.size()), before);
    Acquire(session, {6, 7, 8, 9});
    EXPECT_EQ(ITCSaveToFile(), ITC_SUCCESS);
    ASSERT_EQ(ITCCloseFile(), 0);
    ASSERT_EQ(ITCOpenFile(path.c_str()), ITC_SUCCESS);
    ASSERT_EQ(filehdr->numEpochs, 3);
    for (const uint16_t epoch : Samples{0, 2}) {
        ASSERT_EQ(ITCRetrieveEpoch(epoch), ITC_SUCCESS);
        EXPECT_EQ(session.input[3], epoch == 0 ? 4 : 9);
    }
}

TEST(SavingUnderDifficulties, AFullDiskCostsOneEpoch) {
    for (const int32_t points : {4, 5000}) {  // within one buffer of the stream, and beyond
        const auto samples = static_cast<rlim_t>(1532 + 912 + 32);
        const rlim_t table = samples + 2 * static_cast<rlim_t>(points);
        for (const rlim_t size :
             {rlim_t{1536}, samples - 33, samples - 1, samples + 1, table - 1, table, table + 7}) {
            ExpectOneEpochLost(points, size);
        }
    }
}

TEST(SavingUnderDifficulties, GoesOnBeyondTwoGibibytes) {
    LibrarySession session;
    const TemporaryFolder folder;
    const std::string path = folder.File("data.itc");
    SetUpPulseEpoch();
    ASSERT_EQ(ITCCreateFile(path.c_str(), 0), ITC_SUCCESS);
    const uint32_t start = 0xC0000000;
    EpochPosition[0] = start;
    ASSERT_EQ(fseek(ITCOpenFilePtr, 0x60000000, SEEK_SET), 0);
    ASSERT_EQ(fseek(ITCOpenFilePtr, 0x60000000, SEEK_CUR), 0);
    Acquire(session, {1, 2, 3, 4});
    ASSERT_EQ(ITCSaveToFile(), ITC_SUCCESS);
    EXPECT_EQ(static_cast<uint32_t>(filehdr->epochTablePosition), start + 952);
    ASSERT_EQ(ITCCloseFile(), 0);
    session.input.assign(session.input.size(), 0);
    ASSERT_EQ(ITCOpenFile(path.c_str()), ITC_SUCCESS);
    EXPECT_EQ(EpochPosition[0], start);
    ASSERT_EQ(ITCRetrieveEpoch(0), ITC_SUCCESS);
    EXPECT_EQ(First(session.input, 4), Samples({1, 2, 3, 4}));
}

}  // namespace
