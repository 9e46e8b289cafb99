// An analysis program's session and the epochs it reads whole, from files recorded by the library
// and from files made by hand.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <filesystem>
#include <numeric>
#include <string>
#include <vector>

#include "AnalysisFile.h"
#include "Corvantis.h"
#include "FileBytes.h"
#include "LibrarySession.h"
#include "ReferenceNoise.h"
#include "ReferenceRandom.h"

namespace {

using namespace corvantis_test;

// A destination with margins that no read may touch.
template <class Value>
struct Destination {
    explicit Destination(size_t size, Value filling = Value{90}) : values(size + 8, filling) {}
    Value* Start() { return values.data() + 4; }
    std::vector<Value> Taken(size_t size) const {
        EXPECT_EQ(std::count(values.begin(), values.begin() + 4, Value{90}), 4);
        EXPECT_EQ(std::count(Behind(size), values.end(), Value{90}), values.end() - Behind(size));
        return {values.begin() + 4, Behind(size)};
    }
    auto Behind(size_t size) const {
        return values.begin() + 4 + static_cast<std::ptrdiff_t>(size);
    }
    std::vector<Value> values;
};

TEST(AnalysisSession, StartsAndFinishesAnyNumberOfTimes) {
    InitFlag = 0;
    const QuietOutput quiet;
    for (const int32_t capacity : {100, 0, 1}) {
        ASSERT_EQ(ITCInitializeAnalysis(capacity), ITC_SUCCESS);
        EXPECT_EQ(InitFlag, 1);
        EXPECT_EQ(*ITCbufsize, capacity);
        std::fill_n(*ITCInputBuffer, capacity, 1);
        std::fill_n(*ITCOutputBuffer, capacity, 2);
        EXPECT_EQ(std::accumulate(*ITCInputBuffer, *ITCInputBuffer + capacity, 0), capacity);
        for (const void* slot : StmParameters) EXPECT_EQ(slot, nullptr);
        for (int finish = 0; finish < 2; ++finish) {
            EXPECT_EQ(ITCFinishAnalysis(), ITC_SUCCESS);
            EXPECT_EQ(InitFlag, 1);
        }
        int32_t value = 77;
        EXPECT_EQ(ITCGetEpochSize(0, &value), ITC_NOT_STARTED);
        EXPECT_EQ(ITCGetStmPts(0, 0, 0, &value), ITC_FILE_ERROR);
        EXPECT_EQ(value, 77);
    }
    EXPECT_EQ(ITCInitializeAnalysis(-1), ITC_OUT_OF_MEMORY);
}

TEST_F(AnalysisTest, FinishingLeavesTheFileToItsClosing) {
    Open(DataFileBytes(8, {}));
    int32_t epochs = -1;
    EXPECT_EQ(ITCGetNumberEpochs(&epochs), ITC_SUCCESS);
    EXPECT_EQ(epochs, 0);
    EXPECT_EQ(ITCFinishAnalysis(), ITC_SUCCESS);
    EXPECT_EQ(fgetc(ITCOpenFilePtr), EOF);  // still a stream, behind an empty table
    EXPECT_EQ(ITCCloseOpenFile(), 0);
    EXPECT_EQ(ITCInitializeAnalysis(10), ITC_SUCCESS);
    EXPECT_EQ(ITCOpenFileForInput(folder.File("none.itc").c_str()), ITC_FILE_ERROR);
    EXPECT_EQ(ITCOpenFileForEditing(path.c_str()), ITC_FILE_ERROR);
    EXPECT_EQ(std::filesystem::file_size(path), 0U);
}

// What the acquisition program set, played and saved is what the analysis program gets.
TEST(Analysis, ReadsWhatTheLibraryRecorded) {
    constexpr ITCRampParameters kRamp{-999, 5, 40, 14, 10, {}};
    constexpr ITCBinaryNoiseParameters kBinary{700, 50, 9, 60, 2, 2, 4, {}};
    const TemporaryFolder folder;
    const std::string path = folder.File("data.itc");
    std::vector<Samples> played, acquired;
    {
        LibrarySession recorder;
        const QuietOutput quiet;
        PseudoRandom random;
        ASSERT_EQ(ITCCreateFile(path.c_str(), 0), ITC_SUCCESS);
        for (const int32_t epoch : {0, 1}) {
            ASSERT_EQ(epoch == 0 ? ITCSetSeq("5", "1") : ITCSetSeq("3D", "D2"), ITC_SUCCESS);
            ASSERT_EQ(ITCSetAcqParams(200, 64, 3, -4), ITC_SUCCESS);
            ASSERT_EQ(ITCRampParams(0, &kRamp), ITC_SUCCESS);
            if (epoch == 1) {
                ASSERT_EQ(ITCBinaryNoiseParams(1, &kBinary), ITC_SUCCESS);
            }
            ITCWriteEpochCom(epoch == 0 ? "cell 4" : "");
            ITCWriteMeanOutput(-3 - epoch, 1);
            ASSERT_EQ(ITCUpdateStm(), ITC_SUCCESS);
            random.Fill(recorder.input);
            const size_t size = epoch == 0 ? 64 : 128;
            played.push_back(First(recorder.output, size));
            acquired.push_back(First(recorder.input, size));
            ASSERT_EQ(ITCSaveToFile(), ITC_SUCCESS);
        }
    }
    const AnalysisSession session(128);
    const QuietOutput quiet;
    ASSERT_EQ(ITCOpenFileForInput(path.c_str()), ITC_SUCCESS);
    for (const size_t epoch : {1U, 0U, 1U}) {
        const auto number = static_cast<int32_t>(epoch);
        Destination<uint16_t> samples(128), stimulus(128);
        EXPECT_EQ(ITCReadEpoch(number, samples.Start()), ITC_SUCCESS);
        EXPECT_EQ(samples.Taken(acquired[epoch].size()), acquired[epoch]);
        EXPECT_EQ(ITCReadEpochStm(number, stimulus.Start()), ITC_SUCCESS);
        EXPECT_EQ(stimulus.Taken(played[epoch].size()), played[epoch]);
        int32_t level = 0, input = 0, output = 0, seed = 0;
        EXPECT_EQ(ITCGetMeanOutput(number, 1, &level), ITC_SUCCESS);
        EXPECT_EQ(level, -3 - number);
        EXPECT_EQ(ITCGetInputChan(number, number, &input), ITC_SUCCESS);
        EXPECT_EQ(input, epoch == 0 ? 5 : 8);
        EXPECT_EQ(ITCGetOutputChan(number, 0, &output), ITC_SUCCESS);
        EXPECT_EQ(output, epoch == 0 ? 1 : 4);
        EXPECT_EQ(ITCGetSeed(number, 0, 0, &seed), ITC_STIMULUS_ERROR);
    }
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
    Open(DataFileBytes(8, epochs));
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
    Bytes large = Join({EpochHeaderBytes(100, 5000, {11}), Bytes(8 + 5000 * 10)});
    const Bytes pulse = Join({EpochHeaderBytes(100, 2, {3}), Bytes(32 + 4)});
    Open(DataFileBytes(8, {clamp, pulse, large, cut}));
    ExcitatoryG = InhibitoryG = nullptr;
    Destination<float> excitatory(2), inhibitory(2);
    const auto read = [&](int32_t epoch, uint32_t channel) {
        return ITCReadEpochStmGClamp(epoch, channel, excitatory.Start(), inhibitory.Start());
    };
    const QuietOutput quiet;
    for (const int32_t unreadable : {-1, 3, 4}) EXPECT_EQ(read(unreadable, 0), ITC_FILE_ERROR);
    for (const uint32_t channel : {0U, 1U, 4U}) EXPECT_EQ(read(1, channel), ITC_FILE_ERROR);
    EXPECT_EQ(read(0, 4), ITC_FILE_ERROR);
    EXPECT_EQ(read(2, 0), ITC_TOO_LARGE);
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

struct VersionCase {
    uint8_t version;
    int32_t openResult;
    uint16_t latency;  // first dynamic clamp 1 + 2 * 2 entries + 5, until 7 stored it
    bool olderNoise;
};

TEST_F(AnalysisTest, TheVersionDecidesLatencyAndNoise) {
    constexpr ITCNoiseParameters kNoise{1800, -300, 77, 10, 4, 4, 5, 300, 2};
    Bytes header = EpochHeaderBytes(200, 18, {2, 11});
    Put(header, 888, Hex("1234"));
    Samples samples(36);
    std::iota(samples.begin(), samples.end(), 0xFFF0);
    const Bytes epoch = Join({header, Words({1800, -300, 77, 10, 4, 4, 5, 300, 2}),
                              Hex("00000000 C28C0000"), Bytes(144), BigSamples(samples)});
    const QuietOutput quiet;
    for (const VersionCase& each :
         {VersionCase{4, 0, 10, true}, VersionCase{5, 0, 10, false}, VersionCase{6, 0, 10, false},
          VersionCase{7, 0, 0x1234, false}, VersionCase{8, 0, 0x1234, false},
          VersionCase{9, 9, 0x1234, false}, VersionCase{0xC8, 0, 10, true}}) {
        SCOPED_TRACE(int{each.version});
        Open(DataFileBytes(each.version, {epoch}), each.openResult);
        Destination<uint16_t> acquired(36), stimulus(36);
        EXPECT_EQ(ITCReadEpoch(0, acquired.Start()), ITC_SUCCESS);
        EXPECT_EQ(acquired.Taken(36), samples);
        EXPECT_EQ(epochhdr->pointsLatency, each.latency);
        DropSpareDeviate();
        DropSpareDeviateOnRand();
        ReferenceNoise reference;
        const Samples noise =
            each.olderNoise ? reference.Smoothed(kNoise) : reference.Spectral(kNoise, 200);
        EXPECT_EQ(ITCReadEpochStm(0, stimulus.Start()), ITC_SUCCESS);
        const Samples computed = stimulus.Taken(36);
        for (size_t point = 0; point < 18; ++point) {
            EXPECT_EQ(computed[2 * point], noise[point]) << point;
            EXPECT_EQ(computed[2 * point + 1], 0) << point;
        }
    }
}

}  // namespace
