// Steps, families and spikes, worked by hand.
#include "Readings.h"
#include "StimulusRecords.h"

namespace corvantis_test {
namespace {

constexpr int32_t kPoints = 12;

struct Pulse {
    int32_t amplitude, before, points;
    ITCPulseParameters Record() const {
        return {amplitude, amplitude == 0 ? 10 : 0, points, kPoints - before - points, before, {}};
    }
};

// One entry whose response is in mV, one of which is 32 counts; a stimulus count is one unit.
void SetUpResponse(const char* unit, float voltsPerUnit) {
    epochhdr->ampGain[0] = voltsPerUnit;
    std::strncpy(epochhdr->inputUnits[0], unit, ITC_UNITS_LENGTH);
}

void SetUpEpoch() {
    SetUpAcquisition(1, kPoints);
    filehdr->inputScale = filehdr->outputScale = 3200;
    epochhdr->convFactor[0] = 3200;
    SetUpResponse("mV", 0.01F);
    std::strncpy(epochhdr->outputUnits[0], "pA", ITC_UNITS_LENGTH);
}

std::function<void()> Pulses(std::vector<Pulse> pulses) {
    return [pulses] {
        SetUpEpoch();
        const auto count = static_cast<int32_t>(pulses.size());
        const ITCPulseParameters first = pulses[0].Record();
        if (count == 1) {
            ASSERT_EQ(ITCPulseParams(0, &first), 0);
            return;
        }
        ASSERT_EQ(InstallSum(0, count), 0);
        for (const Pulse& pulse : pulses) {
            const ITCPulseParameters record = pulse.Record();
            ASSERT_EQ(ITCAddPulseParams(0, &record), 0);
        }
    };
}

std::function<void()> Sine(int32_t amplitude, int32_t period) {
    return [=] {
        SetUpEpoch();
        const ITCSineParameters sine = {amplitude, 0, period, 0, kPoints, 0, 0, {}};
        ASSERT_EQ(ITCSineParams(0, &sine), 0);
    };
}

TEST(Steps, AreFoundInWhatWasPlayed) {
    using Expected = std::vector<std::array<int64_t, 4>>;  // before, start, stop, level
    const struct {
        std::vector<Pulse> pulses;
        double holding;
        int64_t start, stop;
        Expected steps;
        int32_t longest;
    } cases[] = {{{{100, 4, 3}}, 0, 4, 7, {{0, 4, 7, 100}}, 0},
                 {{{100, 4, 8}}, 0, 4, 12, {{0, 4, 12, 100}}, 0},
                 {{{0, 4, 3}}, 10, 0, 12, {{0, 4, 7, 10}}, 0},
                 {{{100, 0, 3}}, 100, 3, 12, {}, -1},
                 {{{100, 1, 2}, {-50, 6, 4}}, 0, 1, 10, {{0, 1, 3, 100}, {3, 6, 10, -50}}, 1},
                 {{{100, 1, 3}, {-50, 6, 3}}, 0, 1, 9, {{0, 1, 4, 100}, {4, 6, 9, -50}}, 0},
                 {{{100, 1, 5}, {-50, 6, 3}}, 0, 1, 9, {}, -1}};  // from one level to another
    for (const auto& each : cases) {
        const RecordedFile file = RecordFile({Pulses(each.pulses)});
        MemorySource source{file.bytes};
        Reading reading(source);
        CorvantisCourse course;
        CorvantisStep steps[8];
        ASSERT_EQ(
            CorvantisSteps(reading.recording, 0, 0, &course, steps, 8, nullptr, &reading.problem),
            CORVANTIS_SUCCESS)
            << reading.Text();
        EXPECT_EQ(course.holding, each.holding);
        EXPECT_EQ(course.start, each.start);
        EXPECT_EQ(course.stop, each.stop);
        EXPECT_EQ(course.longest, each.longest);
        Expected found;
        for (int32_t k = 0; k < course.steps; ++k) {
            found.push_back({steps[k].before, steps[k].start, steps[k].stop,
                             static_cast<int64_t>(steps[k].level)});
        }
        EXPECT_EQ(found, each.steps);
    }
}

TEST(Steps, OfOneFamilyDifferInLevelAlone) {
    const std::vector<std::function<void()>> epochs = {
        Pulses({{100, 4, 3}}),
        Pulses({{-7, 4, 3}}),  // 0 and 1 are a family
        Pulses({{100, 4, 4}}),
        Pulses({{100, 3, 4}}),
        Pulses({{100, 1, 2}, {-50, 6, 4}}),
        Pulses({{100, 1, 2}, {70, 6, 4}}),  // 4 and 5
        Pulses({{90, 1, 2}, {-50, 6, 4}}),
        Sine(100, 12),
        Sine(50, 12),  // 7 and 8
        Sine(100, 10)};
    const std::vector<size_t> firstOfFamily = {0, 0, 2, 3, 4, 4, 6, 7, 7, 9};
    const RecordedFile file = RecordFile(epochs);
    MemorySource source{file.bytes};
    Reading reading(source);
    std::vector<int64_t> families;
    for (int64_t epoch = 0; epoch < reading.Epochs(); ++epoch) {
        CorvantisCourse course;
        ASSERT_EQ(
            CorvantisSteps(reading.recording, epoch, 0, &course, nullptr, 0, nullptr, nullptr),
            CORVANTIS_SUCCESS);
        EXPECT_TRUE(course.family > 0 && course.family < int64_t{1} << 53);
        families.push_back(course.family);
    }
    for (size_t a = 0; a < families.size(); ++a) {
        for (size_t b = 0; b < families.size(); ++b) {
            EXPECT_EQ(families[a] == families[b], firstOfFamily[a] == firstOfFamily[b])
                << a << " " << b;
        }
    }
}

// Baseline -64 mV; during the step -60, two spikes to 10 and 42 mV, then -30 and -32 mV: five
// points, of which the last is the steady state.
constexpr int16_t kResponse[kPoints] = {-64 * 32, -64 * 32, -63 * 32, -65 * 32, -60 * 32, 10 * 32,
                                        -60 * 32, 42 * 32,  -32 * 32, -64 * 32, 10 * 32,  -64 * 32};

TEST(Steps, HaveResponsesWithSpikesOfPotentialsAlone) {
    const struct {
        const char* unit;
        float voltsPerUnit;
        double one;  // mV, in that unit
        int64_t spikes, all, late;
    } cases[] = {
        {"mV", 0.01F, 1.0, 2, 3, 0}, {"V", 10.0F, 1e-3, 2, 3, 0}, {"pA", 0.01F, 1.0, -1, -1, 0}};
    for (const auto& each : cases) {
        const RecordedFile file = RecordFile({[&] {
            Pulses({{100, 4, 5}})();
            SetUpResponse(each.unit, each.voltsPerUnit);
        }});
        MemorySource source{file.bytes};
        Reading unchanged(source);
        CorvantisEpochInfo info;
        ASSERT_EQ(CorvantisEpoch(unchanged.recording, 0, &info, nullptr), 0);
        Put(source.bytes, static_cast<size_t>(info.samples),
            BigSamples({std::begin(kResponse), std::end(kResponse)}));
        Reading reading(source);
        const CorvantisStep step = {0, 4, 9, 100};
        CorvantisStepResponse response;
        ASSERT_EQ(CorvantisMeasureStep(reading.recording, 0, 0, &step, CORVANTIS_SPIKE_THRESHOLD,
                                       &response, &reading.problem),
                  0)
            << reading.Text();
        EXPECT_NEAR(response.baseline, -64 * each.one, 1e-5);
        EXPECT_NEAR(response.peak, 42 * each.one, 1e-5);
        EXPECT_NEAR(response.steady, -32 * each.one, 1e-5);
        EXPECT_EQ(response.spikes, each.spikes);
        EXPECT_EQ(response.late, each.late);
        int64_t spikes = 0;
        ASSERT_EQ(CorvantisSpikes(reading.recording, 0, 0, 0, kPoints, CORVANTIS_SPIKE_THRESHOLD,
                                  &spikes, nullptr),
                  0);
        EXPECT_EQ(spikes, each.all) << each.unit;
        const CorvantisStep wrong[] = {{0, 4, 13, 0}, {4, 4, 9, 0}, {0, 9, 9, 0}, {-1, 4, 9, 0}};
        for (const CorvantisStep& none : wrong) {
            EXPECT_EQ(CorvantisMeasureStep(reading.recording, 0, 0, &none, 0, &response, nullptr),
                      CORVANTIS_BAD_ARGUMENT);
        }
        for (const int64_t count : {int64_t{kPoints}, int64_t{-1}, INT64_MAX}) {
            EXPECT_EQ(CorvantisSpikes(reading.recording, 0, 0, 1, count, 0, &spikes, nullptr),
                      each.all < 0 ? CORVANTIS_SUCCESS : CORVANTIS_BAD_ARGUMENT);
        }
    }
}

TEST(Steps, AreAskedForWithRoomForThem) {
    const RecordedFile file = RecordFile({Pulses({{100, 1, 2}, {-50, 6, 4}})});
    MemorySource source{file.bytes};
    Reading reading(source);
    CorvantisCourse course;
    CorvantisStep steps[2] = {{-1, -1, -1, -1}, {-1, -1, -1, -1}};
    const auto ask = [&](int32_t entry, CorvantisCourse* to, CorvantisStep* room, int32_t most) {
        return CorvantisSteps(reading.recording, 0, entry, to, room, most, nullptr, nullptr);
    };
    EXPECT_EQ(ask(0, nullptr, steps, 2), CORVANTIS_BAD_ARGUMENT);
    EXPECT_EQ(ask(0, &course, nullptr, 2), CORVANTIS_BAD_ARGUMENT);
    EXPECT_EQ(ask(0, &course, steps, -1), CORVANTIS_BAD_ARGUMENT);
    EXPECT_EQ(ask(1, &course, steps, 2), CORVANTIS_BAD_ARGUMENT);
    EXPECT_EQ(ask(CORVANTIS_ALL_ENTRIES, &course, steps, 2), CORVANTIS_BAD_ARGUMENT);
    ASSERT_EQ(ask(0, &course, steps, 1), CORVANTIS_SUCCESS);
    EXPECT_EQ(course.steps, 2);
    EXPECT_EQ(steps[0].stop, 3);
    EXPECT_EQ(steps[1].stop, -1);

    char words[200];
    int64_t length = 0;
    ASSERT_EQ(
        CorvantisComponentWords(reading.recording, 0, 0, 1, words, sizeof words, &length, nullptr),
        CORVANTIS_SUCCESS);
    EXPECT_STREQ(words, "pulse -50 pA on 0 pA, 0.4 ms after 0.6 ms");
    EXPECT_EQ(
        CorvantisComponentWords(reading.recording, 0, 0, 2, words, sizeof words, &length, nullptr),
        CORVANTIS_BAD_ARGUMENT);
}

}  // namespace
}  // namespace corvantis_test
