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

// What a read leaves in a destination of that many elements, with margins that it may not touch.
template <class Value, class Read>
std::vector<Value> Taken(size_t count, Read read) {
    std::vector<Value> values(count + 8, Value{90});
    read(values.data() + 4);
    for (size_t i = 0; i < 4; ++i) EXPECT_TRUE(values[i] == 90 && values[count + 4 + i] == 90);
    return {values.begin() + 4, values.end() - 4};
}

class AnalysisTest : public testing::Test {
  protected:
    AnalysisTest() { EXPECT_EQ(ITCInitializeAnalysis(4096), ITC_SUCCESS); }
    ~AnalysisTest() override {
        ITCCloseOpenFile();
        ITCFinishAnalysis();
    }
    void Open(const std::vector<Bytes>& epochs) {
        WriteFile(path, DataFileBytes(epochs));
        ASSERT_EQ(ITCOpenFileForInput(path.c_str()), ITC_SUCCESS);
    }

    const TemporaryFolder folder;
    const std::string path = folder.File("data.itc");
    const QuietOutput quiet;
};

TEST_F(AnalysisTest, StartsAndFinishesAnyNumberOfTimes) {
    for (const int32_t capacity : {100, 0, 1}) {
        Open({});
        InitFlag = 0;
        for (int finish = 0; finish < 2; ++finish) EXPECT_EQ(ITCFinishAnalysis(), ITC_SUCCESS);
        EXPECT_EQ(fgetc(ITCOpenFilePtr), EOF);  // still a stream, behind an empty table
        EXPECT_EQ(ITCCloseOpenFile(), 0);
        ASSERT_EQ(ITCInitializeAnalysis(capacity), ITC_SUCCESS);
        EXPECT_TRUE(InitFlag == 1 && *ITCbufsize == capacity);
        std::fill_n(*ITCInputBuffer, capacity, 1);
        std::fill_n(*ITCOutputBuffer, capacity, 2);
        EXPECT_EQ(std::count(*ITCInputBuffer, *ITCInputBuffer + capacity, 1), capacity);
        for (const void* slot : StmParameters) EXPECT_EQ(slot, nullptr);
        const ITCPulseParameters pulse{};
        EXPECT_EQ(ITCPulseParams(3, &pulse), ITC_SUCCESS);
    }
    EXPECT_EQ(ITCInitializeAnalysis(-1), ITC_OUT_OF_MEMORY);
    EXPECT_EQ(ITCOpenFileForEditing(path.c_str()), ITC_FILE_ERROR);
    EXPECT_EQ(FileContent(path), Bytes());
}

TEST_F(AnalysisTest, SamplesStimuliAndCommentsAreCopiedToTheirLastElement) {
    const Samples acquired{1, 2, 3, 0xFFFF, 0x8000, 6, 7, 8};
    for (const std::string& text : {std::string(), std::string("abc"), std::string(512, 'y')}) {
        Bytes epoch = PulseEpochBytes(acquired);
        Put(epoch, 4, Text(text, text.size()));
        Put(epoch, 516, Text("zzzz", 4));  // what a comment without an end must not run into
        Open({PulseEpochBytes({9, 9, 9, 9}), epoch});
        for (const int32_t number : {1, 2}) {
            const int32_t result = number == 1 ? ITC_SUCCESS : ITC_FILE_ERROR;
            const auto samples = Taken<uint16_t>(
                8, [&](uint16_t* to) { EXPECT_EQ(ITCReadEpoch(number, to), result); });
            const auto stimulus = Taken<uint16_t>(
                8, [&](uint16_t* to) { EXPECT_EQ(ITCReadEpochStm(number, to), result); });
            const auto comment = Taken<char>(
                text.size(), [&](char* to) { EXPECT_EQ(ITCReadEpochComment(number, to), result); });
            EXPECT_EQ(samples, result == 0 ? acquired : Samples(8, 90));
            EXPECT_EQ(stimulus[3], result == 0 ? 995 : 90);
            EXPECT_EQ(stimulus[7], result == 0 ? 0xFFFB : 90);
            EXPECT_EQ(std::string(comment.begin(), comment.end()) == text,
                      result == 0 || text.empty());
        }
    }
    InitFlag = 0;
    EXPECT_EQ(ITCReadEpochComment(0, nullptr), ITC_FILE_ERROR);
    InitFlag = 1;
}

TEST_F(AnalysisTest, ConductancesOfADynamicClamp) {
    const auto clamp = [](uint32_t points, const Bytes& rest) {
        return Join({EpochHeaderBytes(100, points, {11}), Hex("00000000 C28C0000"), rest});
    };
    const Bytes rest = Join({Hex("3F800000 40000000 BF800000 41000000"), BigSamples({0xFFFF, 7})});
    Open({clamp(2, rest), PulseEpochBytes({1, 2, 3, 4}), clamp(4097, {}), clamp(4000, {})});
    ExcitatoryG = InhibitoryG = nullptr;
    std::vector<float> inhibitory;
    const auto read = [&](int32_t epoch, uint32_t channel, int32_t result) {
        return Taken<float>(2, [&](float* excitatory) {
            inhibitory = Taken<float>(2, [&](float* to) {
                EXPECT_EQ(ITCReadEpochStmGClamp(epoch, channel, excitatory, to), result) << epoch;
            });
        });
    };
    for (const int32_t unreadable : {-1, 1, 3, 4}) read(unreadable, 0, ITC_FILE_ERROR);
    for (const uint32_t none : {1U, 4U}) read(0, none, ITC_FILE_ERROR);
    EXPECT_EQ(read(2, 0, ITC_TOO_LARGE), std::vector<float>(2, 90));
    EXPECT_EQ(ExcitatoryG, nullptr) << "no memory for what the file cannot hold";
    EXPECT_EQ(read(0, 0, ITC_SUCCESS), std::vector<float>({1, 2}));
    EXPECT_EQ(inhibitory, std::vector<float>({-1, 8}));
    EXPECT_TRUE(ExcitatoryG[1] == 2 && InhibitoryG[1] == 8);
    Drop(ExcitatoryG, InhibitoryG);
}

}  // namespace
