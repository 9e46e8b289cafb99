// The demo's experiment on a squid axon membrane: threshold, a family of current steps, frozen
// noise, a sum, and current and light in one epoch.
#include "Protocol.h"

#include <cmath>

#include "Corvantis.h"
#include "LibraryCalls.h"

namespace {

constexpr double kMembraneCapacitance = 20.0;  // [pF]
constexpr double kShockDuration = 0.04;        // [ms], short against the membrane's 1 ms
constexpr int32_t kFrozenSeed = 1952;

int32_t VoltageCode(double volts) {
    return static_cast<int32_t>(std::lround(volts * double{filehdr->outputScale}));
}

int32_t CurrentCode(double picoamperes) { return VoltageCode(picoamperes / kPicoamperesPerVolt); }

template <class Record>
Record Timed(const Timing& timing) {
    Record record{};
    record.prePoints = timing.Points(timing.before);
    record.points = timing.Points(timing.during);
    record.tailPoints = timing.Points(timing.after);
    return record;
}

void BuildCurrentPulse(const Timing& timing, double picoamperes) {
    auto pulse = Timed<ITCPulseParameters>(timing);
    pulse.amplitude = CurrentCode(picoamperes);
    Require(ITCPulseParams(0, &pulse), "ITCPulseParams");
}

// So short that it displaces the membrane potential before the channels can answer.
EpochPlan Shock(int millivolts) {
    const Timing timing{20, 10, kShockDuration, 39.96};
    const double picoamperes = kMembraneCapacitance * millivolts / kShockDuration;
    return {"brief shock of " + std::to_string(millivolts) + " nC/cm2", "0", timing,
            [=] { BuildCurrentPulse(timing, picoamperes); }};
}

EpochPlan CurrentStep(int picoamperes) {
    const Timing timing{50, 50, 500, 50};
    return {"current step of " + std::to_string(picoamperes) + " pA", "0", timing,
            [=] { BuildCurrentPulse(timing, picoamperes); }};
}

void BuildFrozenNoise(const Timing& timing) {
    auto noise = Timed<ITCNoiseParameters>(timing);
    noise.amplitude = CurrentCode(60);
    noise.mean = CurrentCode(40);
    noise.seed = kFrozenSeed;
    noise.cutoffFrequency = 50;
    noise.filterOrder = 2;
    Require(ITCNoiseParams(0, &noise), "ITCNoiseParams");
}

EpochPlan FrozenNoise(const char* repeat) {
    const Timing timing{100, 100, 1000, 100};
    return {std::string("frozen noise, ") + repeat + ": SD 60 pA about 40 pA, below 50 Hz", "0",
            timing, [=] { BuildFrozenNoise(timing); }};
}

void BuildSineOnRamp(const Timing& timing) {
    ITCSummedParameters sum{};
    sum.count = 2;
    Require(ITCSummedParams(0, &sum), "ITCSummedParams");
    auto sine = Timed<ITCSineParameters>(timing);
    sine.amplitude = CurrentCode(30);
    sine.period = timing.Points(20);
    Require(ITCAddSineParams(0, &sine), "ITCAddSineParams");
    auto ramp = Timed<ITCRampParameters>(timing);
    ramp.amplitude = CurrentCode(200);
    Require(ITCAddRampParams(0, &ramp), "ITCAddRampParams");
}

EpochPlan SineOnRamp() {
    const Timing timing{80, 50, 800, 50};
    return {"sine of 50 Hz and 30 pA on a ramp to 200 pA", "0", timing,
            [=] { BuildSineOnRamp(timing); }};
}

void BuildFlicker(const Timing& timing) {
    auto flicker = Timed<ITCBinaryNoiseParameters>(timing);
    flicker.amplitude = VoltageCode(1.25);
    flicker.mean = VoltageCode(1.25);
    flicker.seed = kFrozenSeed;
    flicker.segmentPoints = timing.Points(20);
    Require(ITCBinaryNoiseParams(1, &flicker), "ITCBinaryNoiseParams");
}

EpochPlan CurrentAndLight() {
    const Timing timing{40, 50, 500, 50};
    return {"current step of 200 pA; light flickering every 20 ms, its command recorded", "01",
            timing, [=] {
                BuildCurrentPulse(timing, 200);
                BuildFlicker(timing);
            }};
}

}  // namespace

int32_t Timing::Points(double milliseconds) const {
    return static_cast<int32_t>(std::lround(milliseconds * 1000 / interval));
}

std::vector<EpochPlan> DemoProtocol() {
    std::vector<EpochPlan> plans = {Shock(6), Shock(7)};
    for (const int picoamperes : {-100, 25, 50, 100, 150, 200, 300, 400})
        plans.push_back(CurrentStep(picoamperes));
    plans.push_back(FrozenNoise("first play"));
    plans.push_back(FrozenNoise("second play"));
    plans.push_back(SineOnRamp());
    plans.push_back(CurrentAndLight());
    return plans;
}
