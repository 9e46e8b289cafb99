// The channel sequence, the acquisition parameters and the arming of the device.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "Corvantis.h"
#include "LibrarySession.h"
#include "simulator/ITC18Simulator.h"

namespace {

using corvantis_test::LibrarySession;
using corvantis_test::QuietOutput;
using Words = std::vector<uint32_t>;

class AcquisitionSetUpTest : public testing::Test {
  protected:
    ~AcquisitionSetUpTest() override {
        for (int32_t call = 0; call < ITC18Simulator_Calls; ++call)
            ITC18Simulator_FailCall(call, 0);
    }
    static ITC18Simulator_State Device() {
        ITC18Simulator_State state{};
        EXPECT_EQ(ITC18Simulator_GetState(0, &state), 0);
        return state;
    }
    static void ExpectArming(int32_t result) {
        QuietOutput printed;
        EXPECT_EQ(ITCInitAcq(), result);
        const bool refused = result == ITC_TOO_LARGE;
        EXPECT_EQ(printed.Text(), refused ? "Fail-point (itc-code/ITCInitialize:436)\n" : "");
    }

    LibrarySession session{1000};
};

TEST_F(AcquisitionSetUpTest, SequencesReachTheHeaderAndTheDevice) {
    struct Case {
        const char *inputs, *outputs;
        Words words;
    };
    for (const auto& [inputs, outputs, words] :
         {Case{"0", "0", {0xC000}}, Case{"01", "10", {0x0800, 0xC080}}, Case{"D", "D", {0xE400}},
          Case{"7654", "3210", {0x1B80, 0x1300, 0x0A80, 0xC200}},
          Case{"D23", "1D0", {0x0C00, 0x2100, 0xC180}}}) {
        EXPECT_EQ(ITCSetSeq(inputs, outputs), ITC_SUCCESS) << inputs;
        const auto state = Device();
        ASSERT_EQ(epochhdr->sequenceLength, static_cast<int32_t>(words.size()));
        EXPECT_EQ(state.sequenceLength, epochhdr->sequenceLength);
        EXPECT_TRUE(std::equal(words.begin(), words.end(), epochhdr->channelSequence)) << inputs;
        EXPECT_TRUE(std::equal(words.begin(), words.end(), state.sequence)) << inputs;
    }
    ASSERT_EQ(ITC18Simulator_FailCall(ITC18Simulator_CallSetSequence, 3), 0);
    EXPECT_EQ(ITCSetSeq("01", "01"), ITC_NOT_STARTED);
    for (uint32_t i = 0; i < 8; ++i) EXPECT_EQ(itcInputs16[i], 7 - i);
    for (uint32_t i = 0; i < 4; ++i) EXPECT_EQ(itcOutputs16[i], 0x18 - i * 8);
}

TEST_F(AcquisitionSetUpTest, BadSequences) {
    struct Case {
        const char *inputs, *outputs;
        int32_t length;  // left in the header; the header starts with "23"/"12"
        Words words;     // as far as they were written
    };
    for (const auto& [inputs, outputs, length, words] :
         {Case{"01", "0", 2, {0x0900, 0xD180}}, Case{"", "0", 2, {0x0900, 0xD180}},
          Case{"00000", "00000", 2, {0x0900, 0xD180}}, Case{"8", "0", 1, {0x0900, 0xD180}},
          Case{"d", "0", 1, {0x0900, 0xD180}}, Case{"/", "0", 1, {0x0900, 0xD180}},
          Case{"\xB0", "0", 1, {0x0900, 0xD180}}, Case{"7", "4", 1, {0x0380, 0xD180}},
          Case{"5x7", "000", 3, {0x0280, 0xD180}}, Case{"57D", "3/0", 3, {0x1A80, 0x0380}}}) {
        SCOPED_TRACE(std::string(inputs) + " " + outputs);
        ASSERT_EQ(ITCSetSeq("23", "12"), ITC_SUCCESS);
        EXPECT_EQ(ITCSetSeq(inputs, outputs), ITC_BAD_ARGUMENT);
        EXPECT_EQ(epochhdr->sequenceLength, length);
        EXPECT_TRUE(std::equal(words.begin(), words.end(), epochhdr->channelSequence));
        EXPECT_EQ(Device().sequenceLength, 2);
        EXPECT_EQ(Device().sequence[1], 0xD180U);
    }
    const ITCEpochHeader before = *epochhdr;
    EXPECT_EQ(ITCSetSeq("", ""), ITC_NOT_STARTED) << "no device holds 49152 entries";
    EXPECT_EQ(epochhdr->sequenceLength, 49152);
    epochhdr->sequenceLength = before.sequenceLength;
    EXPECT_EQ(std::memcmp(epochhdr, &before, sizeof(before)), 0);
}

TEST_F(AcquisitionSetUpTest, LimitsOfIntervalAndLength) {
    struct Case {
        const char* entries;
        int32_t interval, points, result;
    };
    for (const auto& [entries, interval, points, result] :
         {Case{"0", 4, 1000, 0}, Case{"0", 3, 1000, 6}, Case{"0", 65535, 0, 0},
          Case{"0", 65536, 0, 6}, Case{"0", 100, 1001, 6}, Case{"0", 100, INT32_MAX, 6},
          Case{"0", 0, 10, 6}, Case{"0", -100, 10, 6}, Case{"0", INT32_MIN, 10, 6},
          Case{"01", 8, 1000, 0}, Case{"01", 7, 10, 6}, Case{"01", 131071, 10, 0},
          Case{"01", 131072, 10, 6}, Case{"0123", 262143, 10, 0}, Case{"0123", 15, 10, 6}}) {
        ASSERT_EQ(ITCSetSeq(entries, entries), ITC_SUCCESS);
        ASSERT_EQ(ITCSetAcqParams(262100 / 4, 77, 1, 2), ITC_SUCCESS);
        ITCEpochHeader expected = *epochhdr;
        EXPECT_EQ(ITCSetAcqParams(interval, points, -3, 127), result) << interval << " " << points;
        if (result == ITC_SUCCESS) {
            expected.samplingInterval = interval;
            expected.epochPoints = points;
            expected.acqSettingA = -3;
            expected.acqSettingB = 127;
        }
        EXPECT_EQ(std::memcmp(epochhdr, &expected, sizeof(expected)), 0) << interval;
    }
}

TEST_F(AcquisitionSetUpTest, ArmingHandsOverTheIntervalPerEntryAndNeverDividesByNone) {
    ASSERT_EQ(ITCSetSeq("012", "012"), ITC_SUCCESS);
    ASSERT_EQ(ITCSetAcqParams(302, 10, 0, 0), ITC_SUCCESS);
    ExpectArming(ITC_SUCCESS);
    EXPECT_EQ(Device().interval, 100);
    EXPECT_EQ(Device().prepared, 1);
    epochhdr->samplingInterval = 11;
    ExpectArming(ITC_TOO_LARGE);
    for (const auto& [length, interval] :
         {std::pair{0, 100}, std::pair{-1, INT32_MIN}, std::pair{49152, 100}, std::pair{-1, 100}}) {
        epochhdr->sequenceLength = length;
        EXPECT_EQ(ITCSetAcqParams(interval, 10, 0, 0), ITC_BAD_ARGUMENT) << length;
        epochhdr->samplingInterval = interval;
        ExpectArming(ITC_TOO_LARGE);
    }
    ASSERT_EQ(ITC18Simulator_FailCall(ITC18Simulator_CallInitializeAcquisition, 7), 0);
    ExpectArming(ITC_NOT_STARTED);
}

}  // namespace
