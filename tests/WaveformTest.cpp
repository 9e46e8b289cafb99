// The computed shapes by hand, from the dispatcher and from the generators, and what has no shape.
#include <gtest/gtest.h>

#include <algorithm>
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
void ExpectCalculated(uint32_t type, const void* record, const Samples& expected,
                      int32_t result = ITC_SUCCESS) {
    QuietOutput lines;
    const auto calculate = [&](uint16_t* buffer) {
        EXPECT_EQ(ITCCalcStimulus(type, buffer, record), result) << "type " << type;
    };
    EXPECT_EQ(Written(expected.size(), calculate), expected) << "type " << type;
    const std::string line = "stim type " + std::to_string(static_cast<int32_t>(type)) + "\n";
    EXPECT_EQ(lines.Text(), type == 13 ? line + "alt voltage create\n" : line);
}

void ExpectRefused(uint32_t type, const void* record, int32_t result = ITC_STIMULUS_ERROR) {
    ExpectCalculated(type, record, Samples(8, kUntouched), result);
}

// What cannot be divided is refused by the dispatcher and held by the generators.
template <class Record, class Result>
void ExpectWave(uint32_t type, Result (*generate)(int16_t*, const Record*), const Record& record,
                const Samples& expected, bool isRefused = false) {
    if (isRefused) ExpectRefused(type, &record);
    if (!isRefused) ExpectCalculated(type, &record, expected);
    ExpectGenerated(expected, [&](int16_t* buffer) { generate(buffer, &record); });
}

TEST(WaveformTest, SinesByHand) {
    const LibrarySession session;
    const auto expect = [](int32_t interval, const ITCSineParameters& sine, const Samples& wave) {
        epochhdr->samplingInterval = interval;
        ExpectWave(1, ITCStmCreateSine, sine, wave);
    };
    expect(37, {1000, 0, 4, 0, 8, 0, 0, {}}, {0, 999, 0, Low(-999), 0, 999, 0, Low(-999)});
    // Bounds of 32 bits: the conversion stops at 2147483647 and at -2147483648.
    expect(37, {2000000000, 2000000000, 4, 0, 2, 0, 0, {}}, {Low(2000000000), 0xFFFF});
    expect(37, {-2000000000, -2000000000, 4, 0, 2, 0, 0, {}}, {Low(-2000000000), 0});
    // Without a period or an interval it is no number, for which zero is stored.
    expect(37, {500, 77, 0, 0, 4, 1, 1, {}}, {77, 0, 0, 0, 0, 77});
    expect(0, {500, 77, 10, 0, 4, 1, 1, {}}, {77, 0, 0, 0, 0, 77});
}

TEST(WaveformTest, OthersByHand) {
    const LibrarySession session;
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
        ExpectCalculated(11, nullptr, zeros);
        ExpectGenerated(zeros, ITCStmCreateGClamp);
    }
    ExpectWave(5, ITCStmCreateFilewave, {nullptr, 0}, Samples(4, kUntouched));
    ExpectWave(8, ITCStmCreateTrigSeries, {300, 9, 0, 5, 1, 2, {}}, held, true);
    ExpectWave(9, ITCStmCreateSegmentedNoise, {9, 300, 1, 5, 1, 2, 0, {}}, held, true);
    ExpectWave(10, ITCStmCreateBinaryNoise, {9, 300, 1, 5, 1, 2, 0, {}}, held, true);
    ExpectWave(13, ITCStmCreateAltVoltage, {0, 9, 300, 5, 1, 2, {}}, held, true);
}

TEST(WaveformTest, TypesWithoutWaveformMissingRecordsAndNoSession) {
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
