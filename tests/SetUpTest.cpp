// Start-up, ending and re-start of the library, and the set-up of an acquisition.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <ctime>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

#include "Corvantis.h"
#include "LibrarySession.h"
#include "StimulusRecords.h"
#include "simulator/ITC18Simulator.h"

namespace {

using namespace corvantis_test;

ITC18Simulator_State Device() {
    ITC18Simulator_State state{};
    EXPECT_EQ(ITC18Simulator_GetState(0, &state), 0);
    return state;
}

void Fail(int32_t call, int32_t result) { EXPECT_EQ(ITC18Simulator_FailCall(call, result), 0); }

std::string Image(const ITCEpochHeader& header) {
    return {reinterpret_cast<const char*>(&header), sizeof header};
}

// Buffers for a start-up by hand; no interface is open when a test begins or ends.
class SetUpTest : public testing::Test {
  protected:
    SetUpTest() { ITC18Simulator_Reset(); }
    ~SetUpTest() override {
        EXPECT_EQ(ITCFinish(), ITC_SUCCESS);
        EXPECT_EQ(Device().open, 0);
        Drop(ITCbufsize, itc);
        ITC18Simulator_Reset();
    }
    int32_t Start(int32_t deviceNumber = 0) {
        QuietOutput printed;
        const int32_t result = ITCInit(&input, &output, &capacity, deviceNumber);
        lines = printed.Text();
        return result;
    }

    uint16_t samples[16] = {};
    uint16_t *input = samples, *output = samples + 8;
    int32_t capacity = 8;
    std::string lines;
};

TEST_F(SetUpTest, StartsSetTheDefaults) {
    const auto now = static_cast<int32_t>(std::time(nullptr));
    ITCEpochHeader epoch{};
    itc = nullptr;
    for (const int32_t device : {0, 1}) {
        InitializationTime = 12345;
        ASSERT_EQ(device ? Start() : ITCInitAnalysis(&input, &output, &capacity), ITC_SUCCESS);
        EXPECT_TRUE(device ? InitializationTime >= now : InitializationTime == 12345);
        EXPECT_EQ(Image(*epochhdr), Image(epoch));
        EXPECT_TRUE(filehdr->version == 8 * device && EpochPosition[0] == 580 && InitFlag == 1);
        EXPECT_TRUE(*ITCbufsize == capacity && ITCInputBuffer == &input);
        EXPECT_EQ(Results({ITCInitAcq(), ITCQuickReInit(0), ITCSetSeq("0", "0")}),
                  device ? Results({ITC_TOO_LARGE, 0, 0}) : Results(3, ITC_NOT_STARTED));
        EXPECT_EQ(device == 0 ? ITCFinish() : ITC_SUCCESS, ITC_SUCCESS);
        epoch.sequenceLength = 1;
        epoch.channelSequence[0] = 0xC000;
    }
}

// How far each failing call of the device lets a start-up come, and a quick restart after it.
TEST_F(SetUpTest, AFailingDeviceStopsAStartUntilItWorks) {
    const std::string all = "opening\ninitializing\nitc18\nsetting defaults\n";
    for (const auto& [call, printed] : {std::pair{ITC18Simulator_CallOpen, size_t{8}},
                                        {ITC18Simulator_CallInitialize, size_t{27}},
                                        {ITC18Simulator_CallSetSamplingInterval, all.size()},
                                        {ITC18Simulator_CallSetSequence, all.size()}}) {
        InitFlag = 0;
        Fail(call, 99);
        EXPECT_EQ(Results({Start(), ITCQuickReInit(0)}), Results({1, 1})) << call;
        EXPECT_EQ(lines, all.substr(0, printed));
        EXPECT_TRUE(InitFlag == (call != ITC18Simulator_CallOpen) && Device().open == InitFlag);
        Fail(call, 0);
        EXPECT_EQ(ITCQuickReInit(0), ITC_SUCCESS);
        EXPECT_TRUE(InitFlag == 1 && Device().open == 1 && Device().interval == 10);
        EXPECT_EQ(ITCFinish(), ITC_SUCCESS);
        Drop(ITCbufsize, itc);
    }
    Fail(ITC18Simulator_CallGetStructureSize, -1);
    EXPECT_EQ(Start(), ITC_OUT_OF_MEMORY);
    Fail(ITC18Simulator_CallGetStructureSize, 0);
    EXPECT_EQ(Results({Start(77), Start()}), Results({1, 0})) << "there is no such interface";
}

// The device fails while an experiment runs: that goes on, and acquires again after a quick
// restart, which keeps everything but the device's state. A start that succeeds forgets it.
TEST_F(SetUpTest, SecondStarts) {
    ASSERT_EQ(Results({Start(), ITCSetSeq("1", "2"), ITCSetAcqParams(100, 8, 3, 4)}), Results(3));
    const ITCPulseParameters pulse{7, 0, 8, 0, 0, {}};
    ASSERT_EQ(ITCPulseParams(0, &pulse), ITC_SUCCESS);
    filehdr->numEpochs = 5;
    std::vector<void*> forgotten = {epochhdr, filehdr, EpochPosition, ITCbufsize, itc};
    Fail(ITC18Simulator_CallOpen, 99);
    capacity = 3;
    EXPECT_EQ(Start(), ITC_NOT_STARTED);
    Fail(ITC18Simulator_CallOpen, 0);
    for (const bool restarted : {false, true}) {
        samples[15] = 0;
        const QuietOutput quiet;
        EXPECT_EQ(ITCUpdateStm(), ITC_SUCCESS);
        EXPECT_TRUE(samples[15] == 7 && filehdr->numEpochs == 5);
        EXPECT_EQ(ITCInitAcq(), restarted ? ITC_SUCCESS : ITC_NOT_STARTED);
        EXPECT_EQ(ITCQuickReInit(0), ITC_SUCCESS);
        EXPECT_TRUE(epochhdr->samplingInterval == 100 && Device().interval == 10);
    }
    Fail(ITC18Simulator_CallOpen, 99);
    EXPECT_EQ(ITCQuickReInit(0), ITC_NOT_STARTED);
    EXPECT_EQ(Device().open, 0) << "the old interface was let go";
    Fail(ITC18Simulator_CallOpen, 0);
    EXPECT_EQ(ITCQuickReInit(0), ITC_SUCCESS);
    for (void* const block : std::initializer_list<void*>{epochhdr, filehdr, EpochPosition,
                                                          ITCbufsize, itc, StmParameters[0]})
        forgotten.push_back(block);
    ASSERT_EQ(Results({Start(), ITCInitAcq()}), Results({0, 4})) << "of an interval not set";
    EXPECT_TRUE(filehdr->numEpochs == 0 && epochhdr->epochPoints == 0 && !StmParameters[0]);
    EXPECT_EQ(Device().prepared, 1);
    for (void* const block : forgotten) ITCFree(block);
}

TEST_F(SetUpTest, NothingWorksWithoutAStart) {
    InitFlag = 0;
    filehdr = nullptr;  // as in a program that has just loaded the library
    epochhdr = nullptr;
    for (const bool ended : {false, true}) {
        uint32_t size = 0;
        int32_t value = 0;
        EXPECT_EQ(
            Results({ITCFinish(), ITCInitAcq(), ITCUpdateStm(), ITCSaveToFile(), ITCQuickReInit(0),
                     ITCStmParamsSize(&size, 1), ITCSetSeq("0", "0"), ITCSetAcqParams(100, 1, 0, 0),
                     ITCNewRandomSeed(1, 0, 0), ITCReadStmParams(0), ITCEpochParameters(0),
                     ITCRetrieveEpoch(0), ITCRetrieveEpochStm(0), ITCRetrieveEpochStmGClamp(0, 0),
                     ITCWriteStmParams(0, &size), ITCRetrieveRandomSeed(&value, 0),
                     ITCRetrieveStmAmp(&value, 11, nullptr)}),
            Results(17, ITC_NOT_STARTED));
        for (const Stimulus& stimulus : kStimuli)
            for (const auto give : {stimulus.build, stimulus.add})
                EXPECT_EQ(give == nullptr ? 1 : give(0, Record(stimulus).words), ITC_NOT_STARTED);
        EXPECT_EQ(Results({ITCFreeParams(0), ITCGetNumEpochs(), ITCGetSegments()}), Results(3));
        EXPECT_STREQ(ITCWriteFileCom("file"), "file") << "headers are blank, but there";
        ASSERT_EQ(ended ? Results(2) : Results({Start(), ITCFinish()}), Results(2));
    }
    Drop(ITCbufsize, itc);
    // The buffers of the ended session may be gone by now.
    Fail(ITC18Simulator_CallOpen, 99);
    EXPECT_EQ(Start(), ITC_NOT_STARTED);
    epochhdr->sequenceLength = epochhdr->epochPoints = *ITCbufsize = 1;
    const ITCSpatialStmParameters spatial{1, {}};
    EXPECT_EQ(Results({ITCSpatialParams(0, &spatial), ITCUpdateStm()}), Results({0, 2}));
    ITCFreeParams(0);
}

// Inputs, outputs, the result, and length and words in the header. Good sequences reach the device;
// of bad ones the length stays if it was right, and the words as far as they were written.
TEST_F(SetUpTest, Sequences) {
    ASSERT_EQ(Start(), ITC_SUCCESS);
    for (const char* text :
         {"01 10 0 2 0800 C080", "7654 3210 0 4 1B80 1300 0A80 C200", "D23 1D0 0 3 0C00 2100 C180",
          "01 0 6 2 0900 D180", "00000 00000 6 2 0900 D180", "8 0 6 1 0900 D180", "/ 0 6 1 0900",
          "7 4 6 1 0380 D180", "5x7 000 6 3 0280 D180", "57D 3/0 6 3 1A80 0380"}) {
        SCOPED_TRACE(text);
        std::istringstream row(text);
        std::string inputs, outputs;
        int32_t result = 0, length = 0;
        row >> inputs >> outputs >> result >> length >> std::hex;
        ASSERT_EQ(ITCSetSeq("23", "12"), ITC_SUCCESS);
        EXPECT_EQ(ITCSetSeq(inputs.c_str(), outputs.c_str()), result);
        EXPECT_EQ(epochhdr->sequenceLength, length);
        const auto state = Device();
        EXPECT_EQ(state.sequenceLength, result == 0 ? length : 2);
        uint32_t word = 0;
        for (int i = 0; row >> word; ++i) {
            EXPECT_EQ(epochhdr->channelSequence[i], word);
            EXPECT_EQ(state.sequence[i], result == 0 ? word : i == 0 ? 0x900 : 0xD180);
        }
    }
    EXPECT_EQ(ITCSetSeq("", ""), ITC_NOT_STARTED) << "no device holds 49152 entries";
    EXPECT_EQ(epochhdr->sequenceLength, 49152);
    for (uint32_t i = 0; i < 8; ++i) EXPECT_EQ(itcInputs16[i], 7 - i);
    for (uint32_t i = 0; i < 4; ++i) EXPECT_EQ(itcOutputs16[i], 0x18 - i * 8);
}

TEST_F(SetUpTest, IntervalsAndLengths) {
    ASSERT_EQ(Start(), ITC_SUCCESS);
    using Case = std::tuple<const char*, int32_t, int32_t, int32_t>;
    for (const auto& [entries, interval, points, result] :
         {Case("0", 4, 8, 0), Case("0", 3, 8, 6), Case("0", 65535, 0, 0), Case("0", 65536, 0, 6),
          Case("0", 9, 9, 6), Case("0", 9, INT32_MAX, 6), Case("01", 8, 8, 0),
          Case("0", INT32_MIN, 1, 6), Case("01", 131072, 1, 6), Case("0123", 262143, 1, 0),
          Case("0123", 15, 1, 6)}) {
        SCOPED_TRACE(testing::Message() << entries << " " << interval << " " << points);
        ASSERT_EQ(Results({ITCSetSeq(entries, entries), ITCSetAcqParams(65500, 7, 1, 2)}),
                  Results(2));
        EXPECT_EQ(Results({ITCSetAcqParams(interval, points, -3, 127), ITCInitAcq()}),
                  Results({result, 0}));
        EXPECT_EQ(Results({epochhdr->samplingInterval, epochhdr->epochPoints, epochhdr->acqSettingA,
                           epochhdr->acqSettingB}),
                  result == 0 ? Results({interval, points, -3, 127}) : Results({65500, 7, 1, 2}));
        EXPECT_EQ(Device().interval, epochhdr->samplingInterval / epochhdr->sequenceLength);
    }
    epochhdr->samplingInterval = INT32_MIN;
    for (const int32_t entries : {0, -1}) {
        epochhdr->sequenceLength = entries;
        EXPECT_EQ(Results({ITCSetAcqParams(INT32_MIN, 1, 0, 0), ITCInitAcq()}), Results({6, 4}));
    }
    Fail(ITC18Simulator_CallInitializeAcquisition, 7);
    EXPECT_EQ(ITCInitAcq(), ITC_NOT_STARTED);
}

}  // namespace
