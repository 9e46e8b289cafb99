// The builders, which make a copy of the caller's record the stimulus of an output channel.
#include <algorithm>
#include <cstring>

#include "Corvantis.h"
#include "ITCFileIO/StimulusTypes.h"
#include "ITCInitialize/State.h"
#include "ITCStimulus/Slots.h"
#include "ITCUtilities/Diagnostics.h"
#include "ITCUtilities/WrappingArithmetic.h"

namespace corvantis {
namespace {

constexpr int32_t kLongestLatency = 65535;

enum class LengthRule { kMatchEpoch, kAny };

template <class Record>
bool MatchesEpoch(const Record& record) {
    const int32_t points = WrappingAdd(record.prePoints, record.points);
    return WrappingAdd(points, record.tailPoints) == CurrentEpochHeader().epochPoints;
}

// The record by value: the caller's may be the very one that is released here.
template <class Record>
int32_t CopyIntoSlot(int32_t channel, Record record, uint32_t type) {
    const uint32_t slot = static_cast<uint32_t>(channel);
    ReleaseSlot(slot);
    void* copy = ITCMalloc(1, sizeof record);
    // The type byte stays stale on purpose; the calculation then meets an empty slot.
    if (copy == nullptr) return ITC_OUT_OF_MEMORY;
    std::memcpy(copy, &record, sizeof record);
    InstallSlotRecord(slot, copy, type);
    CurrentEpochHeader().stimType[slot] = static_cast<int8_t>(type);
    return ITC_SUCCESS;
}

int32_t CheckRequest(int32_t channel, const void* params) {
    if (!IsStarted()) return ITC_NOT_STARTED;
    if (!IsChannel(static_cast<uint32_t>(channel)) || params == nullptr) return ITC_STIMULUS_ERROR;
    return ITC_SUCCESS;
}

template <LengthRule rule, class Record>
int32_t Build(int32_t channel, const Record* params, uint32_t type) {
    const int32_t result = CheckRequest(channel, params);
    if (result != ITC_SUCCESS) return result;
    if constexpr (rule == LengthRule::kMatchEpoch) {
        if (!MatchesEpoch(*params)) return ITC_BAD_ARGUMENT;
    }
    return CopyIntoSlot(channel, *params, type);
}

// Unsigned below, signed above: a negative latency passes both, and its low 16 bits are stored.
bool IsLatencyAccepted(int32_t pointsLatency) {
    if (static_cast<uint32_t>(pointsLatency) <= pipelineLength) {
        PrintLatencyTooSmall(pointsLatency, pipelineLength);
        return false;
    }
    if (pointsLatency > kLongestLatency) {
        PrintLatencyTooLarge(pointsLatency, kLongestLatency);
        return false;
    }
    return true;
}

}  // namespace
}  // namespace corvantis

using corvantis::Build;
using corvantis::LengthRule;

int32_t ITCStmParamsSize(uint32_t* size, uint32_t type) {
    if (!corvantis::IsStarted()) return ITC_NOT_STARTED;
    const uint32_t countedSize = corvantis::TypeRow(type).record->countedSize;
    if (countedSize == 0) return ITC_FILE_ERROR;
    *size = countedSize;
    return ITC_SUCCESS;
}

int32_t ITCSineParams(int32_t channel, const ITCSineParameters* params) {
    return Build<LengthRule::kMatchEpoch>(channel, params, ITC_STIMULUS_SINE);
}
int32_t ITCNoiseParams(int32_t channel, const ITCNoiseParameters* params) {
    return Build<LengthRule::kMatchEpoch>(channel, params, ITC_STIMULUS_NOISE);
}
int32_t ITCPulseParams(int32_t channel, const ITCPulseParameters* params) {
    return Build<LengthRule::kMatchEpoch>(channel, params, ITC_STIMULUS_PULSE);
}
int32_t ITCRampParams(int32_t channel, const ITCRampParameters* params) {
    return Build<LengthRule::kMatchEpoch>(channel, params, ITC_STIMULUS_RAMP);
}
int32_t ITCFilewaveParams(int32_t channel, const ITCFilewaveParameters* params) {
    return Build<LengthRule::kAny>(channel, params, ITC_STIMULUS_FILEWAVE);
}
int32_t ITCGenericParams(const ITCGenericParameters* params) {
    return Build<LengthRule::kMatchEpoch>(0, params, ITC_STIMULUS_GENERIC);
}
int32_t ITCTrigSeriesParams(int32_t channel, const ITCTrigSeriesParameters* params) {
    return Build<LengthRule::kMatchEpoch>(channel, params, ITC_STIMULUS_TRIGGER_SERIES);
}
int32_t ITCSegmentedNoiseParams(int32_t channel, const ITCSegmentedNoiseParameters* params) {
    return Build<LengthRule::kMatchEpoch>(channel, params, ITC_STIMULUS_SEGMENTED_NOISE);
}
int32_t ITCBinaryNoiseParams(int32_t channel, const ITCBinaryNoiseParameters* params) {
    return Build<LengthRule::kMatchEpoch>(channel, params, ITC_STIMULUS_BINARY_NOISE);
}
int32_t ITCCirclePulseParams(int32_t channel, const ITCCirclePulseParameters* params) {
    return Build<LengthRule::kAny>(channel, params, ITC_STIMULUS_CIRCLE_PULSE);
}
int32_t ITCAltVoltageParams(int32_t channel, const ITCAlternateVoltageParameters* params) {
    return Build<LengthRule::kMatchEpoch>(channel, params, ITC_STIMULUS_ALTERNATING_VOLTAGE);
}
int32_t ITCSpatialParams(int32_t channel, const ITCSpatialStmParameters* params) {
    return Build<LengthRule::kAny>(channel, params, ITC_STIMULUS_SPATIAL);
}

// The caller's own pointers are cleared too: a record used twice must not share components.
int32_t ITCSummedParams(int32_t channel, ITCSummedParameters* params) {
    const int32_t result = corvantis::CheckRequest(channel, params);
    if (result != ITC_SUCCESS) return result;
    if (params == corvantis::SlotRecord(static_cast<uint32_t>(channel))) {
        ITCSummedParameters copy = *params;
        return ITCSummedParams(channel, &copy);
    }
    std::fill_n(params->components, ITC_COMPONENTS, nullptr);
    return Build<LengthRule::kAny>(channel, params, ITC_STIMULUS_SUMMED);
}

int32_t ITCGClampParams(int32_t channel, const ITCGClampParameters* params, int32_t pointsLatency) {
    if (!corvantis::IsLatencyAccepted(pointsLatency)) return ITC_BAD_ARGUMENT;
    const int32_t result = Build<LengthRule::kAny>(channel, params, ITC_STIMULUS_DYNAMIC_CLAMP);
    if (result != ITC_SUCCESS) return result;
    corvantis::CurrentEpochHeader().pointsLatency = static_cast<uint16_t>(pointsLatency);
    return ITC_SUCCESS;
}
