// The epochs, built with the calls of an application.
#include "Epochs.h"

#include <string>

#include "Corvantis.h"
#include "SampleGrid.h"

namespace exactness {
namespace {

constexpr int32_t kPoints = 2000;
constexpr int32_t kPre = 100;
constexpr int32_t kTail = 150;
constexpr int32_t kShape = kPoints - kPre - kTail;

constexpr ITCSineParameters kSine = {1000, -5, 97, 0, kShape, kTail, kPre, {}};
constexpr ITCNoiseParameters kNoise = {3000, 100, 12345, kShape, kTail, kPre, 0, 300, 2};
constexpr ITCPulseParameters kPulse = {30000, 10000, kShape, kTail, kPre, {}};
constexpr ITCRampParameters kRamp = {-20000, 77, kShape, kTail, kPre, {}};
constexpr ITCGenericParameters kGeneric = {-1, INT32_MIN, kShape, kTail, kPre, {}};
constexpr ITCSegmentedNoiseParameters kSegmented = {500, -100, 42, kShape, kTail, kPre, 50, {}};
constexpr ITCBinaryNoiseParameters kBinary = {700, 3, 2147483647, kShape, kTail, kPre, 11, {}};
constexpr ITCCirclePulseParameters kCircle = {1, -2, 3, {4, -5, 6}, {-7, 8, -9}, kShape, 10, 20};
constexpr ITCAlternateVoltageParameters kAlternating = {33, 900, -450, kShape, kTail, kPre, {}};
constexpr ITCSpatialStmParameters kSpatial = {kPoints, {}};
constexpr ITCGClampParameters kDynamicClamp = {0.1F, -85.3F};

void Done(int32_t result) { Require(result == ITC_SUCCESS, "setting up an epoch"); }

void SetUpSum(int32_t channel) {
    ITCSummedParameters summed = {};
    summed.count = 8;
    Done(ITCSummedParams(channel, &summed));
    const uint32_t slot = static_cast<uint32_t>(channel);
    Done(ITCAddSineParams(slot, &kSine));
    Done(ITCAddNoiseParams(slot, &kNoise));
    Done(ITCAddPulseParams(slot, &kPulse));
    Done(ITCAddRampParams(slot, &kRamp));
    Done(ITCAddSegmentedNoiseParams(slot, &kSegmented));
    Done(ITCAddBinaryNoiseParams(slot, &kBinary));
    Done(ITCAddGClampParams(slot, &kDynamicClamp));
    Done(ITCAddAltVoltParams(slot, &kAlternating));
}

void SetUpStimuli(int32_t epoch) {
    if (epoch == 0) {
        Done(ITCSineParams(0, &kSine));
        Done(ITCNoiseParams(1, &kNoise));
        Done(ITCPulseParams(2, &kPulse));
        Done(ITCRampParams(3, &kRamp));
    } else if (epoch == 1) {
        Done(ITCGenericParams(&kGeneric));
        Done(ITCSegmentedNoiseParams(1, &kSegmented));
        Done(ITCBinaryNoiseParams(2, &kBinary));
        Done(ITCCirclePulseParams(3, &kCircle));
    } else if (epoch == 2) {
        Done(ITCAltVoltageParams(0, &kAlternating));
        Done(ITCSpatialParams(1, &kSpatial));
        Done(ITCSegmentedNoiseParams(2, &kSegmented));
        SetUpSum(3);
    } else {
        Done(ITCGClampParams(0, &kDynamicClamp, 60000));
    }
}

void SetUpHeader(int32_t epoch) {
    epochhdr->epochTime = 0.1F * static_cast<float>(epoch);
    ITCWriteEpochCom(("epoch " + std::to_string(epoch) + ", \xB5V, \xE9t\xE9").c_str());
    for (int32_t channel = 0; channel < ITC_CHANNELS; ++channel) {
        const float value = static_cast<float>(channel) / 3;
        ITCWriteAmpGain(value + 1, -value, static_cast<int8_t>(-channel), channel);
        ITCWriteConvFactor(400 * value, channel);
        ITCWriteAmpMode(static_cast<int8_t>(127 - channel), channel);
        ITCWriteMeanOutput(-100 * channel, channel);
        ITCWriteNDF(value, channel);
        ITCWriteLEDSetting(static_cast<uint16_t>(65535 - channel), channel);
        ITCWriteInputUnits("a full unit name", channel);
        ITCWriteOutputUnits("pA", channel);
    }
    for (int32_t index = 0; index < ITC_USER_VALUES; ++index) {
        ITCWriteUserValue(1.0F / static_cast<float>(index + 3), index);
    }
    ITCWriteTemperature(36.6F);
    ITCWriteDigitalOutput(0xA55A);
    ITCWriteWavelength(488);
}

}  // namespace

void SetUpEpoch(int32_t epoch) {
    *epochhdr = {};
    const bool single = epoch == 3;
    Done(single ? ITCSetSeq("7", "0") : ITCSetSeq("0D37", "0123"));
    Done(ITCSetAcqParams(single ? 50 : 200, kPoints, -1, 100));
    SetUpHeader(epoch);
    SetUpStimuli(epoch);
}

Samples Outputs() {
    const int32_t samples = epochhdr->epochPoints * epochhdr->sequenceLength;
    return Samples(*ITCOutputBuffer, *ITCOutputBuffer + samples);
}

}  // namespace exactness
