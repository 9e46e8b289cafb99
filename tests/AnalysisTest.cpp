// An analysis program's session and the epochs it reads whole.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "AnalysisFile.h"
#include "Corvantis.h"
#include "FileBytes.h"
#include "LibrarySession.h"
#include "PulseEpoch.h"

namespace {

using namespace corvantis_test;

// A destination with margins that no read may touch.
template <class Value>
struct Destination {
    explicit Destination(size_t size) : values(size + 8, Value{90}) {}
    Value* Start() { return values.data() + 4; }
    std::vector<Value> Taken(size_t size) const {
        const auto end = values.begin() + 4 + static_cast<std::ptrdiff_t>(size);
        EXPECT_EQ(std::count(values.begin(), values.begin() + 4, Value{90}), 4);
        EXPECT_EQ(std::count(end, values.end(), Value{90}), values.end() - end);
        return {values.begin() + 4, end};
    }
    std::vector<Value> values;
};

TEST(AnalysisSession, StartsAndFinishesAnyNumberOfTimes) {
    InitFlag = 0;
    for (const int32_t capacity : {100, 0, 1}) {
        ASSERT_EQ(ITCInitializeAnalysis(capacity), ITC_SUCCESS);
        EXPECT_EQ(InitFlag, 1);
        EXPECT_EQ(*ITCbufsize, capacity);
        std::fill_n(*ITCInputBuffer, capacity, 1);
        std::fill_n(*ITCOutputBuffer, capacity, 2);
        EXPECT_EQ(std::count(*ITCInputBuffer, *ITCInputBuffer + capacity, 1), capacity);
        for (const void* slot : StmParameters) EXPECT_EQ(slot, nullptr);
        for (int finish = 0; finish < 2; ++finish) {
            EXPECT_EQ(ITCFinishAnalysis(), ITC_SUCCESS);
            EXPECT_EQ(InitFlag, 1);
        }
        ExpectFailure(Of(ITCGetEpochSize), 0, ITC_NOT_STARTED);
        ExpectFailure(Of(ITCGetStmPts, 0, 0), 0, ITC_FILE_ERROR);
    }
    EXPECT_EQ(ITCInitializeAnalysis(-1), ITC_OUT_OF_MEMORY);
}

TEST_F(AnalysisTest, FinishingLeavesTheFileToItsClosing) {
    Open(DataFileBytes({}));
    EXPECT_EQ(ITCFinishAnalysis(), ITC_SUCCESS);
    EXPECT_EQ(fgetc(ITCOpenFilePtr), EOF);  // still a stream, behind an empty table
    EXPECT_EQ(ITCCloseOpenFile(), 0);
    EXPECT_EQ(ITCInitializeAnalysis(10), ITC_SUCCESS);
    EXPECT_EQ(ITCOpenFileForEditing(path.c_str()), ITC_FILE_ERROR);
    EXPECT_EQ(std::filesystem::file_size(path), 0U);
}

TEST_F(AnalysisTest, SamplesAndStimuliAreCopiedToTheirLastPoint) {
    const Samples acquired{1, 2, 3, 0xFFFF, 0x8000, 6, 7, 8};
    const QuietOutput quiet;
    Open(DataFileBytes({PulseEpochBytes({9, 9, 9, 9}), PulseEpochBytes(acquired)}));
    Destination<uint16_t> samples(12), stimulus(12);
    EXPECT_EQ(ITCReadEpoch(2, samples.Start()), ITC_FILE_ERROR);
    EXPECT_EQ(ITCReadEpochStm(2, stimulus.Start()), ITC_FILE_ERROR);
    samples.Taken(0), stimulus.Taken(0);
    EXPECT_EQ(ITCReadEpoch(1, samples.Start()), ITC_SUCCESS);
    EXPECT_EQ(samples.Taken(8), acquired);
    EXPECT_EQ(ITCReadEpochStm(1, stimulus.Start()), ITC_SUCCESS);
    EXPECT_EQ(stimulus.Taken(8), Samples({0xFFFB, 0xFFFB, 995, 995, 995, 995, 0xFFFB, 0xFFFB}));
}

TEST_F(AnalysisTest, CommentsAreCopiedToTheirLastCharacter) {
    std::vector<Bytes> epochs;
    const std::string texts[] = {"abc", "", std::string(511, 'x'), std::string(512, 'y')};
    for (const std::string& text : texts) {
        Bytes header = EpochHeaderBytes(100, 0, {});
        Put(header, 4, Text(text, text.size()));
        Put(header, 516, Text("zzzz", 4));  // what a comment without an end must not run into
        epochs.push_back(header);
    }
    Open(DataFileBytes(epochs));
    for (int32_t epoch = 0; epoch < 4; ++epoch) {
        Destination<char> comment(512);
        EXPECT_EQ(ITCReadEpochComment(epoch, comment.Start()), ITC_SUCCESS);
        const std::vector<char> taken = comment.Taken(texts[epoch].size());
        EXPECT_EQ(std::string(taken.begin(), taken.end()), texts[epoch]);
    }
    Destination<char> untouched(512);
    EXPECT_EQ(ITCReadEpochComment(4, untouched.Start()), ITC_FILE_ERROR);
    InitFlag = 0;
    EXPECT_EQ(ITCReadEpochComment(0, untouched.Start()), ITC_FILE_ERROR);
    InitFlag = 1;
    untouched.Taken(0);
}

TEST_F(AnalysisTest, ConductancesOfADynamicClamp) {
    const Bytes clamp = Join({EpochHeaderBytes(100, 2, {11}), Hex("00000000 C28C0000"),
                              Hex("3F800000 40000000 BF800000 41000000"), BigSamples({0xFFFF, 7})});
    Bytes cut = clamp;
    Put(cut, 576, Big32(2000));
    Bytes cutAndLarge = clamp;
    Put(cutAndLarge, 576, Big32(5000));
    const Bytes large = Join({EpochHeaderBytes(100, 5000, {11}), Bytes(8 + 5000 * 10)});
    const Bytes pulse = Join({EpochHeaderBytes(100, 2, {3}), Bytes(32 + 4)});
    Open(DataFileBytes({clamp, pulse, large, cut, cutAndLarge}));
    ExcitatoryG = InhibitoryG = nullptr;
    Destination<float> excitatory(2), inhibitory(2);
    const auto read = [&](int32_t epoch, uint32_t channel) {
        return ITCReadEpochStmGClamp(epoch, channel, excitatory.Start(), inhibitory.Start());
    };
    const QuietOutput quiet;
    for (const int32_t unreadable : {-1, 3, 5}) EXPECT_EQ(read(unreadable, 0), ITC_FILE_ERROR);
    for (const uint32_t channel : {0U, 1U, 4U}) EXPECT_EQ(read(1, channel), ITC_FILE_ERROR);
    EXPECT_EQ(read(0, 4), ITC_FILE_ERROR);
    for (const int32_t tooLarge : {2, 4}) EXPECT_EQ(read(tooLarge, 0), ITC_TOO_LARGE);
    excitatory.Taken(0), inhibitory.Taken(0);
    EXPECT_EQ(read(0, 0), ITC_SUCCESS);
    EXPECT_EQ(excitatory.Taken(2), std::vector<float>({1, 2}));
    EXPECT_EQ(inhibitory.Taken(2), std::vector<float>({-1, 8}));
    EXPECT_EQ(ExcitatoryG[1], 2);
    EXPECT_EQ(InhibitoryG[1], 8);
    ITCFree(ExcitatoryG);
    ITCFree(InhibitoryG);
    ExcitatoryG = InhibitoryG = nullptr;
}

}  // namespace
