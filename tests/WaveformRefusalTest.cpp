// Records and types that have no waveform, and a library that is not started.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "Corvantis.h"
#include "LibrarySession.h"
#include "ReferenceSamples.h"

namespace {

using corvantis_test::kUntouched;
using corvantis_test::LibrarySession;
using corvantis_test::QuietOutput;
using corvantis_test::Samples;
using corvantis_test::Written;

class WaveformRefusalTest : public testing::Test {
  protected:
    LibrarySession session;
};

// What cannot be divided is refused by the dispatcher and held by the generators.
template <class Record, class Result>
void ExpectRefused(uint32_t type, Result (*generate)(int16_t*, const Record*), Record record) {
    record.prePoints = 2;
    record.points = 5;
    record.tailPoints = 1;
    QuietOutput quiet;
    int32_t result = -1;
    EXPECT_EQ(Written(8, [&](uint16_t* b) { result = ITCCalcStimulus(type, b, &record); }),
              Samples(8, kUntouched));
    EXPECT_EQ(result, ITC_STIMULUS_ERROR) << "type " << type;
    EXPECT_EQ(Written(8, [&](uint16_t* b) { generate(reinterpret_cast<int16_t*>(b), &record); }),
              Samples(8, 300));
}

TEST_F(WaveformRefusalTest, ZeroDivisors) {
    ExpectRefused(8, ITCStmCreateTrigSeries, ITCTrigSeriesParameters{300, 9, 0, 0, 0, 0, {}});
    ExpectRefused(9, ITCStmCreateSegmentedNoise,
                  ITCSegmentedNoiseParameters{9, 300, 1, 0, 0, 0, 0, {}});
    ExpectRefused(10, ITCStmCreateBinaryNoise, ITCBinaryNoiseParameters{9, 300, 1, 0, 0, 0, 0, {}});
    ExpectRefused(13, ITCStmCreateAltVoltage,
                  ITCAlternateVoltageParameters{0, 9, 300, 0, 0, 0, {}});
}

TEST_F(WaveformRefusalTest, TypesWithoutWaveform) {
    const uint8_t record[2048] = {};
    for (const uint32_t type : {0U, 6U, 7U, 12U, 15U, 255U, 0x80000000U, 0xFFFFFFFFU}) {
        QuietOutput lines;
        int32_t result = -1;
        EXPECT_EQ(Written(4, [&](uint16_t* b) { result = ITCCalcStimulus(type, b, record); }),
                  Samples(4, kUntouched));
        EXPECT_EQ(result, ITC_STIMULUS_ERROR);
        EXPECT_EQ(lines.Text(), "stim type " + std::to_string(static_cast<int32_t>(type)) + "\n");
    }
}

TEST_F(WaveformRefusalTest, MissingRecord) {
    for (const uint32_t type : {1U, 2U, 3U, 4U, 5U, 8U, 9U, 10U, 13U, 14U}) {
        QuietOutput quiet;
        uint16_t untouched = kUntouched;
        EXPECT_EQ(ITCCalcStimulus(type, &untouched, nullptr), ITC_STIMULUS_ERROR) << type;
        EXPECT_EQ(untouched, kUntouched);
    }
}

TEST(WaveformWithoutStartTest, DispatcherRefusesAndGeneratorsWork) {
    { const LibrarySession ended; }
    const ITCPulseParameters pulse{20, 5, 2, 1, 1, {}};
    Samples buffer(4, kUntouched);
    QuietOutput lines;
    EXPECT_EQ(ITCCalcStimulus(3, buffer.data(), &pulse), ITC_NOT_STARTED);
    EXPECT_EQ(ITCCalcStimulus(99, buffer.data(), &pulse), ITC_NOT_STARTED);
    EXPECT_EQ(lines.Text(), "stim type 3\nstim type 99\n");
    EXPECT_EQ(buffer, Samples(4, kUntouched));
    ITCStmCreatePulse(reinterpret_cast<int16_t*>(buffer.data()), &pulse);
    EXPECT_EQ(buffer, (Samples{5, 25, 25, 5}));
}

}  // namespace
