// An analysis program's session and the epochs it reads whole.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "Corvantis.h"
#include "FileBytes.h"
#include "LibrarySession.h"
#include "PulseEpoch.h"

namespace {

using namespace corvantis_test;

TEST(AnalysisSession, StartsAndFinishesAnyNumberOfTimes) {
    const TemporaryFolder folder;
    const std::string path = folder.File("data.itc");
    WriteFile(path, FileHeaderBytes(8, 0, 580));
    InitFlag = 0;
    for (const int32_t capacity : {100, 0, 1}) {
        ASSERT_EQ(Results({ITCInitializeAnalysis(capacity), ITCOpenFileForInput(path.c_str())}),
                  Results(2));
        EXPECT_TRUE(InitFlag == 1 && *ITCbufsize == capacity && StmParameters[3] == nullptr);
        std::fill_n(*ITCInputBuffer, capacity, 1);
        std::fill_n(*ITCOutputBuffer, capacity, 2);
        const ITCPulseParameters pulse{};
        EXPECT_EQ(Results({ITCPulseParams(3, &pulse), ITCFinishAnalysis(), ITCFinishAnalysis()}),
                  Results(3));
        EXPECT_EQ(Results({ITCReadEpochComment(0, nullptr), ITCCloseOpenFile()}), Results({7, 0}));
    }
    EXPECT_EQ(Results({ITCInitializeAnalysis(-1), ITCInitializeAnalysis(1),
                       ITCOpenFileForEditing(path.c_str())}),
              Results({5, 0, 7}));
    EXPECT_EQ(FileContent(path), Bytes());
    EXPECT_EQ(Results({ITCCloseOpenFile(), ITCFinishAnalysis()}), Results(2));
}

class Analysis : public RecordingTest {
  protected:
    Analysis() : RecordingTest(4096) {}

    const QuietOutput quiet;
};

// Behind the last element, and of an epoch that there is not, everything stays.
TEST_F(Analysis, SamplesStimuliAndCommentsAreCopied) {
    for (const std::string& text : {std::string(), std::string("abc"), std::string(512, 'y')}) {
        Bytes epoch = PulseEpochBytes({1, 2, 3, 0xFFFF, 0x8000, 6, 7, 8});
        Put(epoch, 516, Text("zzzz", 4));  // what a comment without an end must not run into
        Put(epoch, 4, Text(text, text.size()));
        Open(DataFileBytes({PulseEpochBytes({9, 9, 9, 9}), epoch}));
        Samples samples(9, 90), stimulus(9, 90);
        std::string comment(520, '-');
        for (const int32_t number : {2, 1}) {
            EXPECT_EQ(samples, Samples(9, 90));
            EXPECT_EQ(Results({ITCReadEpoch(number, samples.data()),
                               ITCReadEpochStm(number, stimulus.data()),
                               ITCReadEpochComment(number, comment.data())}),
                      Results(3, number == 1 ? ITC_SUCCESS : ITC_FILE_ERROR));
        }
        EXPECT_EQ(samples, Samples({1, 2, 3, 0xFFFF, 0x8000, 6, 7, 8, 90}));
        EXPECT_EQ(stimulus, Samples({0xFFFB, 0xFFFB, 995, 995, 995, 995, 0xFFFB, 0xFFFB, 90}));
        EXPECT_EQ(comment, text + std::string(520 - text.size(), '-'));
    }
}

// With one entry the arrays come back; with two the place is taken eight bytes too far, so that
// the values of the first entry arrive two places early.
TEST_F(Analysis, ConductancesOfADynamicClamp) {
    const auto clamp = [](uint32_t points, const Bytes& types, const Bytes& rest = {}) {
        return Join({EpochHeaderBytes(100, points, types), Hex("00000000 C28C0000"), rest});
    };
    const Bytes one = Join({Hex("3F800000 40000000 BF800000 41000000"), BigSamples({0xFFFF, 7})});
    const Bytes two = Join({one, Hex("40A00000 40E00000"), Bytes(12), BigSamples({1, 2, 3, 4})});
    Open(DataFileBytes({clamp(2, {11}, First(one, 20)), PulseEpochBytes({1, 2, 3, 4}),
                        clamp(4097, {11}), clamp(4000, {11}), clamp(2, {11, 11}, two)}));
    ExcitatoryG = InhibitoryG = nullptr;
    std::vector<float> excitatory(3, 90), inhibitory = excitatory;
    const auto read = [&](int32_t epoch, uint32_t channel = 0) {
        return ITCReadEpochStmGClamp(epoch, channel, excitatory.data(), inhibitory.data());
    };
    EXPECT_EQ(Results({read(-1), read(1), read(3), read(5), read(0, 1), read(0, 4), read(2)}),
              Results({7, 7, 7, 7, 7, 7, ITC_TOO_LARGE}));
    EXPECT_EQ(ExcitatoryG, nullptr) << "no memory for what the file cannot hold";
    EXPECT_TRUE(excitatory == std::vector<float>(3, 90) && read(0) == ITC_SUCCESS);
    EXPECT_EQ(excitatory, std::vector<float>({1, 2, 90}));
    EXPECT_EQ(inhibitory, std::vector<float>({-1, 8, 90}));
    for (const uint32_t channel : {0U, 1U}) {
        EXPECT_EQ(read(4, channel), ITC_SUCCESS);
        EXPECT_TRUE(ExcitatoryG[1] == 8 && InhibitoryG[1] == 5);
    }
    Samples samples(4, 90);
    EXPECT_EQ(ITCReadEpoch(4, samples.data()), ITC_SUCCESS);
    EXPECT_EQ(samples, Samples({1, 2, 3, 4})) << "behind the conductances of both";
    Drop(ExcitatoryG, InhibitoryG);
}

}  // namespace
