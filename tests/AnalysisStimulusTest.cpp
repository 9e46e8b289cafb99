// The getters of stimulus values by epoch number, for every kind of record and component.
#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string>

#include "AnalysisFile.h"
#include "AnalysisGetters.h"
#include "Corvantis.h"
#include "FileBytes.h"

namespace {

using namespace corvantis_test;

// Noise, a sum of five, a dynamic clamp, an alternating voltage; two points each.
Bytes StimulusEpoch() {
    const Bytes noise = Words({500, -1, 0x12345678, 4, 5, 6, 7, 3000, 9});
    const Bytes sum = Join({Big32(5), Hex("03 02 0C 0B 0E"), Bytes(251 + 1024)});
    const Bytes components = Join(
        {Words({1000, -5, 20, 30, 40, 0, 0, 0}), Words({-600, 32768, -9, 41, 51, 61, 1, 1, 1}),
         Words({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}), Hex("3F800000 40000000"), Bytes(16, 1)});
    const Bytes clamp = Join({Hex("41200000 C28C0000"), Bytes(16, 2)});
    const Bytes alternating = Words({2, -3, 70000, 5, 6, 7, 0, 0, 0});
    return Join({EpochHeaderBytes(400, 2, {2, 7, 11, 13}), noise, sum, components, clamp,
                 alternating, Bytes(16, 3)});
}

struct StimulusCase {
    int32_t channel, component;
    std::optional<int32_t> type, amplitude, mean, points, prePoints, tailPoints, seed;
};

using StimulusGetter = int32_t (*)(int32_t, int32_t, int32_t, int32_t*);

Field OfStimulus(StimulusGetter get, int32_t channel, int32_t component, int32_t expected = 0) {
    const auto call = [=](int32_t epoch, int32_t* result) {
        return get(epoch, channel, component, result);
    };
    return MakeField<int32_t>("stimulus value", call, expected);
}

TEST_F(AnalysisTest, StimulusValues) {
    Open(DataFileBytes(8, {StimulusEpoch(), Bytes(100)}));
    constexpr auto kNone = std::nullopt;
    const StimulusCase cases[] = {
        {0, 99, 2, 500, -1, 4, 6, 5, 0x12345678},
        {1, 0, 3, 1000, -5, 20, 40, 30, kNone},
        {1, 1, 2, -600, 32768, 41, 61, 51, -9},
        {1, 2, 12, kNone, kNone, 10, 12, 11, kNone},
        {1, 3, 11, 0, 0, 0, 0, 0, kNone},
        {1, 4, 14, kNone, kNone, kNone, kNone, kNone, kNone},
        {2, 0, 11, 0, 0, 0, 0, 0, kNone},
        {3, -7, 13, -3, 70000, 5, 7, 6, kNone},
        {1, 5, {}, {}, {}, {}, {}, {}, {}},
        {1, -1, {}, {}, {}, {}, {}, {}, {}},
        {1, 256, {}, {}, {}, {}, {}, {}, {}},
        {4, 0, {}, {}, {}, {}, {}, {}, {}},
        {-1, 0, {}, {}, {}, {}, {}, {}, {}},
    };
    for (const StimulusCase& each : cases) {
        SCOPED_TRACE("channel " + std::to_string(each.channel) + ", " +
                     std::to_string(each.component));
        const auto expect = [&](StimulusGetter get, std::optional<int32_t> expected) {
            const Field value = OfStimulus(get, each.channel, each.component, expected.value_or(0));
            ExpectResult(value, 0, expected ? ITC_SUCCESS : ITC_STIMULUS_ERROR);
            for (const int32_t epoch : {-1, 1, 2}) ExpectResult(value, epoch, ITC_FILE_ERROR);
            InitFlag = 0;
            ExpectResult(value, 0, ITC_FILE_ERROR);
            InitFlag = 1;
        };
        expect(ITCGetStmType, each.type);
        expect(ITCGetStmAmp, each.amplitude);
        expect(ITCGetStmMean, each.mean);
        expect(ITCGetStmPts, each.points);
        expect(ITCGetStmPrePts, each.prePoints);
        expect(ITCGetStmTailPts, each.tailPoints);
        expect(ITCGetSeed, each.seed);
    }
}

TEST_F(AnalysisTest, TypesOfChannelsThatTheSequenceHasNot) {
    Bytes epoch = StimulusEpoch();
    Put(epoch, 580, Big32(1));
    Put(epoch, 605, {2, 9, 0x80, 7});
    Open(DataFileBytes(8, {epoch}));
    ExpectResult(OfStimulus(ITCGetStmType, 1, 0, 9), 0, ITC_SUCCESS);
    ExpectResult(OfStimulus(ITCGetStmType, 2, 0, -128), 0, ITC_SUCCESS);
    ExpectResult(OfStimulus(ITCGetStmType, 3, 0), 0, ITC_STIMULUS_ERROR);
    ExpectResult(OfStimulus(ITCGetStmAmp, 1, 0), 0, ITC_STIMULUS_ERROR);
}

TEST_F(AnalysisTest, ReversalPotentials) {
    Open(DataFileBytes(8, {StimulusEpoch()}));
    for (const int32_t channel : {-1, 0, 1, 2, 3, 4}) {
        const int32_t code = channel == 2 ? ITC_SUCCESS : ITC_STIMULUS_ERROR;
        for (const Field& field : {Indexed("excitatory", ITCGetGClampERev, channel, 10),
                                   Indexed("inhibitory", ITCGetGClampIRev, channel, -70)}) {
            ExpectResult(field, 0, code);
            ExpectResult(field, 1, ITC_FILE_ERROR);
            InitFlag = 0;
            ExpectResult(field, 0, ITC_FILE_ERROR);
            InitFlag = 1;
        }
    }
}

}  // namespace
