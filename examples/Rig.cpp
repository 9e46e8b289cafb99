// Acquiring one epoch after another on the simulated interface.
#include "Rig.h"

#include <cstring>

#include "Corvantis.h"
#include "ITC18Simulator.h"
#include "LibraryCalls.h"

namespace {

constexpr int32_t kBufferSamples = 100000;
constexpr double kPauseBetweenEpochs = 1.0;  // [s]
constexpr int8_t kCurrentClamp = 1;
constexpr int8_t kNoAmplifier = 0;
constexpr uint16_t kLightWavelength = 470;  // [nm]

const char* const kFileComment =
    "SIMULATED: no cell was recorded. Model neuron of the simulated ITC18: squid axon membrane "
    "after Hodgkin and Huxley 1952 at 6.3 C, 2000 um2, 1 uF/cm2 (20 pF); gNa 120, gK 36, gL 0.3 "
    "mS/cm2; ENa 50, EK -77, EL -54.4 mV; steady state at the holding current when an epoch "
    "starts. Input 0: membrane potential, 10 mV per mV; output 0: current, 400 pA per V; "
    "output 1: light command, read back at input 1. Amplifier mode 1: current clamp. User values: "
    "0 capacitance [pF], 1 pause [s].";

void DescribeNeuron(int32_t entry) {
    ITCWriteAmpGain(static_cast<float>(kVoltsPerMillivolt), 10, 0, entry);
    ITCWriteAmpMode(kCurrentClamp, entry);
    ITCWriteConvFactor(static_cast<float>(kPicoamperesPerVolt), entry);
    ITCWriteInputUnits("mV", entry);
    ITCWriteOutputUnits("pA", entry);
}

void DescribeLight(int32_t entry) {
    ITCWriteAmpGain(1, 0, 0, entry);
    ITCWriteAmpMode(kNoAmplifier, entry);
    ITCWriteConvFactor(1, entry);
    ITCWriteInputUnits("V", entry);
    ITCWriteOutputUnits("V", entry);
}

void DescribeEntries(const char* channels) {
    for (int32_t entry = 0; channels[entry] != '\0'; ++entry)
        channels[entry] == '0' ? DescribeNeuron(entry) : DescribeLight(entry);
    const bool lit = std::strchr(channels, '1') != nullptr;
    ITCWriteWavelength(lit ? kLightWavelength : 0);
}

void DescribeEpoch(const EpochPlan& plan, double time) {
    epochhdr->epochTime = static_cast<float>(time);
    ITCWriteEpochCom(plan.comment.c_str());
    ITCWriteTemperature(6.3F);
    ITCWriteUserValue(20, 0);
    ITCWriteUserValue(static_cast<float>(kPauseBetweenEpochs), 1);
    DescribeEntries(plan.channels);
}

// The holding levels are known once the stimulus is: they are its first samples.
void DescribeHoldingLevels(const std::vector<uint16_t>& stimulus) {
    for (int32_t entry = 0; entry < epochhdr->sequenceLength; ++entry)
        ITCWriteMeanOutput(static_cast<int16_t>(stimulus[static_cast<size_t>(entry)]), entry);
}

double Duration(const EpochPlan& plan) {
    return plan.timing.EpochPoints() * 1e-6 * plan.timing.interval;
}

}  // namespace

Rig::Rig(const std::string& path)
    : acquired(kBufferSamples),
      stimulus(kBufferSamples),
      acquiredSamples(acquired.data()),
      stimulusSamples(stimulus.data()) {
    Require(ITCInit(&acquiredSamples, &stimulusSamples, &kBufferSamples, 0), "ITCInit");
    ITCWriteFileCom(kFileComment);
    Require(ITCCreateFile(path.c_str(), 0),
            ("ITCCreateFile of " + path + ", which must not exist yet").c_str());
    played.emplace(path + ".played");
}

Rig::~Rig() {
    ITCCloseFile();
    for (uint32_t slot = 0; slot < ITC_CHANNELS; ++slot) ITCFreeParams(slot);
    ITCFinish();
}

void Rig::Record(const EpochPlan& plan) {
    Require(ITCSetSeq(plan.channels, plan.channels), "ITCSetSeq");
    Require(ITCSetAcqParams(plan.timing.interval, plan.timing.EpochPoints(), 0, 0),
            "ITCSetAcqParams");
    DescribeEpoch(plan, clock);
    plan.build();
    Require(ITCUpdateStm(), "ITCUpdateStm");
    DescribeHoldingLevels(stimulus);
    Play();
    Require(ITCSaveToFile(), "ITCSaveToFile");
    clock += Duration(plan) + kPauseBetweenEpochs;
}

// With a real interface its driver would start here and move the samples.
void Rig::Play() {
    Require(ITCInitAcq(), "ITCInitAcq");
    const int32_t points = epochhdr->epochPoints;
    const int32_t refused = ITC18Simulator_Play(itc, stimulusSamples, acquiredSamples, points);
    Require(refused == 0 ? ITC_SUCCESS : ITC_NOT_STARTED, "ITC18Simulator_Play");
    const int32_t samples = points * epochhdr->sequenceLength;
    played->Append({stimulusSamples, static_cast<size_t>(samples)});
}
