// Start-up, ending and re-start of the library, with every driver call made to fail.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <ctime>
#include <functional>
#include <string>
#include <vector>

#include "Corvantis.h"
#include "LibrarySession.h"
#include "StimulusRecords.h"
#include "simulator/ITC18Simulator.h"

namespace {

using namespace corvantis_test;

constexpr char kAllLines[] = "opening\ninitializing\nitc18\nsetting defaults\n";

ITC18Simulator_State Device() {
    ITC18Simulator_State state{};
    EXPECT_EQ(ITC18Simulator_GetState(0, &state), 0);
    return state;
}

int32_t AnySize() {
    uint32_t size = 0;
    return ITCStmParamsSize(&size, 1);
}

// Buffers for a start-up by hand; no interface is open when a test begins or ends.
class SetUpTest : public testing::Test {
  protected:
    SetUpTest() { ITC18Simulator_Reset(); }
    ~SetUpTest() override { ITC18Simulator_Reset(); }
    static void Fail(int32_t call, int32_t result = 99) {
        ASSERT_EQ(ITC18Simulator_FailCall(call, result), 0);
    }
    int32_t Start(int32_t deviceNumber = 0) {
        QuietOutput printed;
        const int32_t result = ITCInit(&input, &output, &capacity, deviceNumber);
        lines = printed.Text();
        return result;
    }
    template <class... Block>
    static void Drop(Block*&... block) {
        (ITCFree(block), ...);
        ((block = nullptr), ...);
    }
    static void End() {
        EXPECT_EQ(ITCFinish(), ITC_SUCCESS);
        EXPECT_EQ(Device().open, 0);
        Drop(ITCbufsize, itc);
    }
    // What a start-up that failed too early for an ending has taken.
    static void DropBlocks() { Drop(epochhdr, filehdr, EpochPosition, ITCbufsize, itc); }

    uint16_t samples[16] = {};
    uint16_t* input = samples;
    uint16_t* output = samples + 8;
    int32_t capacity = 8;
    std::string lines;
};

TEST_F(SetUpTest, StartSetsTheDefaults) {
    const auto before = static_cast<int32_t>(std::time(nullptr));
    ASSERT_EQ(Start(), ITC_SUCCESS);
    EXPECT_EQ(lines, kAllLines);
    EXPECT_EQ(InitFlag, 1);
    EXPECT_GE(InitializationTime, before);
    EXPECT_LE(InitializationTime, static_cast<int32_t>(std::time(nullptr)));
    ITCEpochHeader epoch{};
    epoch.sequenceLength = 1;
    epoch.channelSequence[0] = 0xC000;
    EXPECT_EQ(std::memcmp(epochhdr, &epoch, sizeof(epoch)), 0);
    EXPECT_EQ(EpochPosition[0], 580U);
    EXPECT_EQ(*ITCbufsize, capacity);
    EXPECT_NE(ITCbufsize, &capacity);
    EXPECT_EQ(ITCInputBuffer, &input);
    EXPECT_EQ(ITCOutputBuffer, &output);
    EXPECT_EQ(Device().interval, 10);
    EXPECT_EQ(Device().sequenceLength, 1);
    EXPECT_EQ(Device().sequence[0], 0xC000U);
    EXPECT_EQ(Device().prepared, 0);
    End();
    EXPECT_EQ(InitFlag, 1);
}

struct Fault {
    int32_t call;
    const char* lines;
    bool started;
};
const Fault kFaults[] = {{ITC18Simulator_CallOpen, "opening\n", false},
                         {ITC18Simulator_CallInitialize, "opening\ninitializing\nitc18\n", true},
                         {ITC18Simulator_CallSetSamplingInterval, kAllLines, true},
                         {ITC18Simulator_CallSetSequence, kAllLines, true}};

TEST_F(SetUpTest, AFailingDeviceStopsTheStart) {
    for (const Fault& fault : kFaults) {
        InitFlag = 0;
        Fail(fault.call);
        EXPECT_EQ(Start(), ITC_NOT_STARTED) << fault.call;
        EXPECT_EQ(lines, fault.lines);
        EXPECT_EQ(InitFlag, fault.started ? 1 : 0);
        EXPECT_EQ(filehdr->version, 8);
        EXPECT_EQ(AnySize(), fault.started ? ITC_SUCCESS : ITC_NOT_STARTED);
        EXPECT_EQ(Device().open, fault.started ? 1 : 0);
        Fail(fault.call, 0);
        EXPECT_EQ(ITCQuickReInit(0), ITC_SUCCESS) << "goes on where the device stopped";
        EXPECT_EQ(InitFlag, 1);
        EXPECT_EQ(EpochPosition[0], 580U);
        EXPECT_EQ(filehdr->inputScale, 3200.0F);
        EXPECT_EQ(Device().open, 1);
        End();
    }
    InitFlag = 0;
    EXPECT_EQ(Start(77), ITC_NOT_STARTED) << "there is no such interface";
    DropBlocks();
    Fail(ITC18Simulator_CallGetStructureSize, -1);
    EXPECT_EQ(Start(), ITC_OUT_OF_MEMORY);
    EXPECT_EQ(lines, "");
    EXPECT_EQ(InitFlag, 0);
}

TEST_F(SetUpTest, ASecondStartForgetsTheFirstAndTakesTheInterfaceOver) {
    ASSERT_EQ(Start(), ITC_SUCCESS);
    filehdr->numEpochs = 5;
    epochhdr->epochTime = 5;
    const ITCPulseParameters pulse{};
    ASSERT_EQ(ITCPulseParams(2, &pulse), ITC_SUCCESS);
    void* const forgotten[] = {StmParameters[2], epochhdr, filehdr, EpochPosition, ITCbufsize, itc};
    ASSERT_EQ(Start(), ITC_SUCCESS);
    EXPECT_EQ(filehdr->numEpochs, 0);
    EXPECT_EQ(epochhdr->epochTime, 0);
    EXPECT_EQ(StmParameters[2], nullptr);
    for (void* const block : forgotten) ITCFree(block);
    ASSERT_EQ(ITCSetAcqParams(100, 8, 0, 0), ITC_SUCCESS);
    EXPECT_EQ(ITCInitAcq(), ITC_SUCCESS);
    End();
}

// The device fails while an experiment runs: that goes on, and acquires again after a quick
// restart.
TEST_F(SetUpTest, AFailedSecondStartLeavesTheFirstToGoOn) {
    ASSERT_EQ(Start(), ITC_SUCCESS);
    const ITCPulseParameters pulse{7, 0, 8, 0, 0, {}};
    ASSERT_EQ(ITCSetAcqParams(100, 8, 0, 0), ITC_SUCCESS);
    ASSERT_EQ(ITCPulseParams(0, &pulse), ITC_SUCCESS);
    filehdr->numEpochs = 5;
    void* const forgotten[] = {epochhdr, filehdr, EpochPosition, ITCbufsize, itc};
    Fail(ITC18Simulator_CallOpen);
    capacity = 3;
    EXPECT_EQ(Start(), ITC_NOT_STARTED);
    Fail(ITC18Simulator_CallOpen, 0);
    for (const bool restarted : {false, true}) {
        samples[15] = 0;
        const QuietOutput quiet;
        EXPECT_EQ(ITCUpdateStm(), ITC_SUCCESS);
        EXPECT_EQ(samples[15], 7);
        EXPECT_EQ(filehdr->numEpochs, 5);
        EXPECT_EQ(ITCInitAcq(), restarted ? ITC_SUCCESS : ITC_NOT_STARTED);
        EXPECT_EQ(ITCQuickReInit(0), ITC_SUCCESS);
    }
    ITCFreeParams(0);
    End();
    for (void* const block : forgotten) ITCFree(block);
}

TEST_F(SetUpTest, QuickRestartKeepsEverythingButTheDevicesState) {
    ASSERT_EQ(Start(), ITC_SUCCESS);
    ASSERT_EQ(ITCSetSeq("12", "21"), ITC_SUCCESS);
    ASSERT_EQ(ITCSetAcqParams(2000, 8, 3, 4), ITC_SUCCESS);
    const ITCPulseParameters pulse{1, 2, 8, 0, 0, {}};
    ASSERT_EQ(ITCPulseParams(2, &pulse), ITC_SUCCESS);
    filehdr->numEpochs = 5;
    const ITCEpochHeader* const header = epochhdr;
    ASSERT_EQ(ITCQuickReInit(1), ITC_SUCCESS);
    EXPECT_EQ(Device().open, 0) << "the old interface was let go";
    Fail(ITC18Simulator_CallClose);
    ASSERT_EQ(ITCQuickReInit(0), ITC_SUCCESS) << "a refusal to close is ignored";
    EXPECT_EQ(Device().interval, 10);
    EXPECT_EQ(epochhdr, header);
    EXPECT_EQ(epochhdr->sequenceLength, 1);
    EXPECT_EQ(epochhdr->samplingInterval, 2000);
    EXPECT_EQ(filehdr->numEpochs, 5);
    EXPECT_NE(StmParameters[2], nullptr);
    for (const Fault& fault : kFaults) {
        Fail(fault.call);
        EXPECT_EQ(ITCQuickReInit(0), ITC_NOT_STARTED) << fault.call;
        Fail(fault.call, 0);
    }
    EXPECT_EQ(ITCQuickReInit(0), ITC_SUCCESS);
    ITCFreeParams(2);
    End();
}

TEST_F(SetUpTest, AnalysisStartsWithoutDevice) {
    itc = nullptr;  // no device of an earlier start-up
    InitializationTime = 12345;
    ASSERT_EQ(ITCInitAnalysis(&input, &output, &capacity), ITC_SUCCESS);
    EXPECT_EQ(InitFlag, 1);
    EXPECT_EQ(InitializationTime, 12345);
    EXPECT_EQ(*ITCbufsize, capacity);
    EXPECT_EQ(ITCInputBuffer, &input);
    EXPECT_EQ(ITCOutputBuffer, &output);
    EXPECT_EQ(filehdr->version, 0);
    EXPECT_EQ(ITCCreateFile(TemporaryFolder().File("data.itc").c_str(), 0), ITC_SUCCESS);
    EXPECT_EQ(ITCCloseFile(), 0);
    EXPECT_EQ(filehdr->version, 8) << "no file without a version";
    EXPECT_EQ(EpochPosition[0], 580U);
    EXPECT_EQ(AnySize(), ITC_SUCCESS);
    EXPECT_EQ(ITCQuickReInit(0), ITC_NOT_STARTED);
    EXPECT_EQ(ITCSetSeq("0", "0"), ITC_NOT_STARTED);
    EXPECT_EQ(ITCInitAcq(), ITC_NOT_STARTED);
    End();
}

TEST_F(SetUpTest, NothingWorksWithoutAStart) {
    uint32_t size = 0;
    int32_t value = 0;
    const std::vector<std::function<int32_t()>> calls = {
        AnySize,
        ITCInitAcq,
        ITCUpdateStm,
        ITCSaveToFile,
        [] { return ITCSetSeq("0", "0"); },
        [] { return ITCSetAcqParams(100, 1, 0, 0); },
        [] { return ITCNewRandomSeed(1, 0, 0); },
        [] { return ITCReadStmParams(0); },
        [] { return ITCEpochParameters(0); },
        [] { return ITCRetrieveEpoch(0); },
        [] { return ITCRetrieveEpochStm(0); },
        [] { return ITCRetrieveEpochStmGClamp(0, 0); },
        [&] { return ITCWriteStmParams(0, &size); },
        [&] { return ITCRetrieveRandomSeed(&value, 0); },
        [&] { return ITCRetrieveStmAmp(&value, 11, nullptr); }};
    const auto expectRefusals = [&](const char* when) {
        for (size_t n = 0; n < calls.size(); ++n)
            EXPECT_EQ(calls[n](), ITC_NOT_STARTED) << when << ", call " << n;
        for (const Entry& builder : kBuilders) EXPECT_EQ(builder.give(0, {}), ITC_NOT_STARTED);
        for (const Entry& adder : kAdders) EXPECT_EQ(adder.give(0, {}), ITC_NOT_STARTED);
        EXPECT_EQ(ITCFreeParams(0), ITC_SUCCESS);
        EXPECT_EQ(Device().open, 0);
    };
    InitFlag = 0;
    EXPECT_EQ(ITCFinish(), ITC_NOT_STARTED);
    EXPECT_EQ(ITCQuickReInit(0), ITC_NOT_STARTED);
    expectRefusals("before");
    ASSERT_EQ(Start(), ITC_SUCCESS);
    ASSERT_EQ(ITCFinish(), ITC_SUCCESS);
    EXPECT_EQ(ITCFinish(), ITC_NOT_STARTED);
    EXPECT_EQ(ITCQuickReInit(0), ITC_NOT_STARTED);
    expectRefusals("after");
    Drop(ITCbufsize, itc);
    // The buffers of the ended session may be gone by now.
    Fail(ITC18Simulator_CallOpen);
    EXPECT_EQ(Start(), ITC_NOT_STARTED);
    epochhdr->sequenceLength = epochhdr->epochPoints = 1;
    EXPECT_EQ(ITCUpdateStm(), ITC_STIMULUS_ERROR);
    DropBlocks();
}

}  // namespace
