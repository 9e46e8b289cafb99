// The disk is full in the middle of a save: the save says so, the process goes on, and what was
// saved before and is saved later can be read.
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <csignal>
#include <filesystem>
#include <vector>

#include "Corvantis.h"
#include "LibrarySession.h"

namespace corvantis_test {
namespace {

constexpr int32_t kPoints = 3000;
constexpr int64_t kEpochSize = 912 + 32 + 2 * kPoints;

// A limit on the size of files, which behaves as a full disk, while it lives.
class FileSizeLimit {
  public:
    explicit FileSizeLimit(rlim_t bytes) {
        getrlimit(RLIMIT_FSIZE, &before_);
        previous_ = std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit = {bytes, before_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;
    ~FileSizeLimit() {
        setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, previous_);
    }

  private:
    rlimit before_ = {};
    void (*previous_)(int) = SIG_DFL;
};

int32_t SaveEpoch(LibrarySession& session, int32_t number) {
    epochhdr->epochTime = static_cast<float>(number);
    for (int32_t i = 0; i < kPoints; ++i) {
        session.input[static_cast<size_t>(i)] = static_cast<uint16_t>(number * 7 + i);
    }
    return ITCSaveToFile();
}

void SetUpEpochs(const std::string& path) {
    const ITCPulseParameters pulse = {1000, 0, kPoints, 0, 0, {}};
    ASSERT_EQ(ITCSetAcqParams(100, kPoints, 0, 0), ITC_SUCCESS);
    ASSERT_EQ(ITCPulseParams(0, &pulse), ITC_SUCCESS);
    ASSERT_EQ(ITCCreateFile(path.c_str(), 1), ITC_SUCCESS);
}

// The times of the epochs that a fresh opening can read whole.
std::vector<float> ReadableEpochs(const std::string& path) {
    LibrarySession session;
    std::vector<float> times;
    EXPECT_EQ(ITCOpenFile(path.c_str()), ITC_SUCCESS);
    for (int32_t epoch = 0; epoch < ITCGetNumEpochs(); ++epoch) {
        if (ITCRetrieveEpoch(epoch) != ITC_SUCCESS) continue;
        const int32_t number = static_cast<int32_t>(epochhdr->epochTime);
        const bool whole =
            session.input[0] == static_cast<uint16_t>(number * 7) &&
            session.input[kPoints - 1] == static_cast<uint16_t>(number * 7 + kPoints - 1);
        if (whole) times.push_back(epochhdr->epochTime);
    }
    return times;
}

// From the first byte that the second epoch needs to the last one that it and its table fill.
class FullDisk : public testing::TestWithParam<int64_t> {};

TEST_P(FullDisk, CostsOnlyTheEpochThatFoundNoRoom) {
    const TemporaryFolder folder;
    const std::string path = folder.File("data.itc");
    const std::string asLeft = folder.File("as-left.itc");
    {
        LibrarySession session;
        SetUpEpochs(path);
        ASSERT_EQ(SaveEpoch(session, 1), ITC_SUCCESS);
        {
            const FileSizeLimit limit(static_cast<rlim_t>(580 + kEpochSize + GetParam()));
            ASSERT_EQ(SaveEpoch(session, 2), ITC_FILE_ERROR);
            ASSERT_EQ(SaveEpoch(session, 3), ITC_FILE_ERROR);
        }
        // What is there if the program ends now, without closing.
        std::filesystem::copy_file(path, asLeft);
        ASSERT_EQ(SaveEpoch(session, 4), ITC_SUCCESS);
        ASSERT_EQ(SaveEpoch(session, 5), ITC_SUCCESS);
    }
    EXPECT_EQ(ReadableEpochs(asLeft), (std::vector<float>{1}));
    // The failed epochs' numbers read as the one that took their place.
    EXPECT_EQ(ReadableEpochs(path), (std::vector<float>{1, 4, 4, 4, 5}));
}

INSTANTIATE_TEST_SUITE_P(Limits, FullDisk,
                         testing::Values(4, 5, 911, 912, 950, 4000, kEpochSize - 1, kEpochSize,
                                         kEpochSize + 1, kEpochSize + 7));

TEST(FullDiskAtOnce, CreatesNothingThatLooksLikeAFile) {
    const TemporaryFolder folder;
    const LibrarySession session;
    const FileSizeLimit limit(100);
    EXPECT_EQ(ITCCreateFile(folder.File("data.itc").c_str(), 1), ITC_FILE_ERROR);
    EXPECT_EQ(ITCSaveToFile(), ITC_FILE_ERROR);
    EXPECT_EQ(ITCCloseFile(), -1);
}

}  // namespace
}  // namespace corvantis_test
