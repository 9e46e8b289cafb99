// Waveforms by hand and at their edges, from the dispatcher and from the generators, and what has
// no waveform.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>

#include "Corvantis.h"
#include "LibrarySession.h"
#include "WrittenSamples.h"

namespace {

using namespace corvantis_test;

uint16_t Low(int64_t level) { return static_cast<uint16_t>(level); }

template <class Generate>
void ExpectGenerated(const Samples& expected, Generate generate) {
    QuietOutput none;
    const auto calculate = [&](auto* buffer) { generate(reinterpret_cast<int16_t*>(buffer)); };
    EXPECT_EQ(Written(expected.size(), calculate), expected);
    EXPECT_EQ(none.Text(), "") << "the dispatcher alone prints";
}

// The line comes before any check, so a log shows what was tried.
Samples Calculated(uint32_t type, const void* record, size_t points, int32_t result = ITC_SUCCESS) {
    QuietOutput lines;
    const auto calculate = [&](uint16_t* buffer) {
        EXPECT_EQ(ITCCalcStimulus(type, buffer, record), result) << "type " << type;
    };
    const Samples samples = Written(points, calculate);
    const std::string line = "stim type " + std::to_string(static_cast<int32_t>(type)) + "\n";
    EXPECT_EQ(lines.Text(), type == 13 ? line + "alt voltage create\n" : line);
    return samples;
}

void ExpectRefused(uint32_t type, const void* record, int32_t result = ITC_STIMULUS_ERROR) {
    EXPECT_EQ(Calculated(type, record, 8, result), Samples(8, kUntouched)) << "type " << type;
}

// What cannot be divided is refused by the dispatcher and held by the generators.
template <class Record, class Buffer, class Result>
void ExpectWave(uint32_t type, Result (*generate)(Buffer*, const Record*), const Record& record,
                const Samples& expected, bool isRefused = false) {
    if (isRefused) {
        ExpectRefused(type, &record);
    } else {
        EXPECT_EQ(Calculated(type, &record, expected.size()), expected) << type;
    }
    ExpectGenerated(expected,
                    [&](auto* samples) { generate(reinterpret_cast<Buffer*>(samples), &record); });
}

struct WaveformTest : testing::Test {
    WaveformTest() { epochhdr->samplingInterval = 50; }
    LibrarySession session;
};

TEST_F(WaveformTest, ByHand) {
    epochhdr->samplingInterval = 37;
    ExpectWave(1, ITCStmCreateSine, {1000, 0, 4, 0, 8, 0, 0, {}},
               {0, 999, 0, Low(-999), 0, 999, 0, Low(-999)});
    // Without a period it is no number, for which zero is stored.
    ExpectWave(1, ITCStmCreateSine, {500, 77, 0, 0, 4, 1, 1, {}}, {77, 0, 0, 0, 0, 77});
    ExpectWave(3, ITCStmCreatePulse, {10000, 30000, 1, 1, 1, {}}, {30000, 0x9C40, 30000});
    ExpectWave(4, ITCStmCreateRamp, {100, 0, 4, 1, 0, {}}, {0, 25, 50, 75, 0});
    ExpectWave(8, ITCStmCreateTrigSeries, {5, 100, 3, 7, 0, 1, {}}, {5, 105, 5, 5, 105, 5, 5, 105});
    ExpectWave(13, ITCStmCreateAltVoltage, {2, 9, 4, 5, 1, 0, {}}, {4, 4, 13, 13, 4, 4});
    // The draws behind this seed's restart are 0.746 and 0.417.
    ExpectWave(10, ITCStmCreateBinaryNoise, {100, 3, 5, 5, 1, 1, 2, {}},
               {3, 103, 103, Low(-97), Low(-97), 3, 3});
    const Samples wave = {1, 0xFFFF, 0x8000, 40000}, held(8, 300);
    for (const int32_t length : {4, 3, 0, -4}) {
        const Samples zeros(static_cast<size_t>(std::max(length, 0)), 0);
        Samples expected(8, kUntouched);
        std::copy_n(wave.begin(), zeros.size(), expected.begin());
        ExpectWave(5, ITCStmCreateFilewave, {wave.data(), length}, expected);
        ExpectWave(14, ITCStmCreateSpatial, {length, {}}, zeros);
        epochhdr->epochPoints = length;
        EXPECT_EQ(Calculated(11, nullptr, zeros.size()), zeros);
        ExpectGenerated(zeros, ITCStmCreateGClamp);
    }
    ExpectWave(5, ITCStmCreateFilewave, {nullptr, 0}, Samples(4, kUntouched));
    ExpectWave(8, ITCStmCreateTrigSeries, {300, 9, 0, 5, 1, 2, {}}, held, true);
    ExpectWave(9, ITCStmCreateSegmentedNoise, {9, 300, 1, 5, 1, 2, 0, {}}, held, true);
    ExpectWave(10, ITCStmCreateBinaryNoise, {9, 300, 1, 5, 1, 2, 0, {}}, held, true);
    ExpectWave(13, ITCStmCreateAltVoltage, {0, 9, 300, 5, 1, 2, {}}, held, true);
}

// Nothing divided by nothing is no number. Totals wrap: twice -2^31 and 7 are 7.
TEST_F(WaveformTest, NoiseOfNothing) {
    ExpectWave(2, ITCStmCreateNoise, {1, 9, 1, INT32_MIN, 7, INT32_MIN, 0, 1, 1}, Samples(7, 9));
    ExpectWave(2, ITCStmCreateNoise, {2000, 9, 1, 3, 1, 1, 0, 0, 2}, {9, 0, 0, 0, 9});
    filehdr->version = 4;
    ExpectWave(2, ITCStmCreateNoise, {1800, 9, 1, 3, 1, 1, 0, 60, 1}, {9, 0, 0, 0, 9});
    for (const auto& [tail, pre, window] :  // windows that do not fit
         {std::array{9, 1, 4}, std::array{1, 9, 4}, std::array{9, -3, 1}, std::array{-1, 9, 1}}) {
        const ITCNoiseParameters record{100, 5, 1, 10, tail, pre, window, 60, 1};
        ExpectRefused(2, &record);
    }
}

// Three points that would lie before the buffer are passed over, the rest moves up.
TEST_F(WaveformTest, NoiseBeforeTheBufferAndAtOneHalf) {
    ITCSegmentedNoiseParameters noise{700, 5, 77, 10, 0, 0, 2, {}};
    DropSpareDeviate();
    Samples expected = Calculated(9, &noise, 10);
    std::rotate(expected.begin(), expected.begin() + 3, expected.end());
    std::fill(expected.end() - 3, expected.end(), 5);
    noise.prePoints = -3;
    noise.tailPoints = 3;
    DropSpareDeviate();
    EXPECT_EQ(Calculated(9, &noise, 10), expected);
    int32_t word = -9687;
    for (int n = 0; n < 117; ++n) ran2(&word);
    EXPECT_EQ(ran2(&word), 0.5F);
    const ITCBinaryNoiseParameters record{1000, 0, 9687, 117, 0, 0, 1, {}};
    EXPECT_EQ(Calculated(10, &record, 117).back(), Low(-1000));
}

TEST(WaveformRefusals, TypesWithoutWaveformMissingRecordsAndNoSession) {
    const uint8_t record[2048] = {};
    {
        const LibrarySession session;
        for (const uint32_t type : {0U, 6U, 7U, 12U, 15U, 255U, 0x80000000U, 0xFFFFFFFFU})
            ExpectRefused(type, record);
        for (const uint32_t type : {1U, 2U, 3U, 4U, 5U, 8U, 9U, 10U, 13U, 14U})
            ExpectRefused(type, nullptr);
    }
    const ITCPulseParameters pulse{20, 5, 2, 1, 1, {}};
    for (const uint32_t type : {3U, 99U}) ExpectRefused(type, &pulse, ITC_NOT_STARTED);
    ExpectGenerated({5, 25, 25, 5}, [&](int16_t* buffer) { ITCStmCreatePulse(buffer, &pulse); });
}

}  // namespace
