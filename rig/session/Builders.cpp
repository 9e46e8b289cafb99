// The library's builder and adder of each stimulus type.
#include "session/Builders.h"

#include <cstring>

#include "Corvantis.h"

namespace corvantis::rig {
namespace {

template <class Record>
Record RecordOf(const reading::Stimulus& stimulus) {
    Record record = {};
    static_assert(sizeof record <= kLargestRecord);
    std::memcpy(&record, stimulus.record.data(), sizeof record);
    return record;
}

template <class Record>
int32_t Call(int32_t (*builder)(int32_t, const Record*), int32_t entry,
             const reading::Stimulus& stimulus) {
    const auto record = RecordOf<Record>(stimulus);
    return builder(entry, &record);
}

template <class Record>
int32_t Call(int32_t (*adder)(uint32_t, const Record*), int32_t entry,
             const reading::Stimulus& stimulus) {
    const auto record = RecordOf<Record>(stimulus);
    return adder(static_cast<uint32_t>(entry), &record);
}

int32_t Add(int32_t entry, const reading::Stimulus& component) {
    switch (component.type) {
        case ITC_STIMULUS_SINE:
            return Call(ITCAddSineParams, entry, component);
        case ITC_STIMULUS_NOISE:
            return Call(ITCAddNoiseParams, entry, component);
        case ITC_STIMULUS_PULSE:
            return Call(ITCAddPulseParams, entry, component);
        case ITC_STIMULUS_RAMP:
            return Call(ITCAddRampParams, entry, component);
        case ITC_STIMULUS_SEGMENTED_NOISE:
            return Call(ITCAddSegmentedNoiseParams, entry, component);
        case ITC_STIMULUS_BINARY_NOISE:
            return Call(ITCAddBinaryNoiseParams, entry, component);
        case ITC_STIMULUS_DYNAMIC_CLAMP:
            return Call(ITCAddGClampParams, entry, component);
        case ITC_STIMULUS_ALTERNATING_VOLTAGE:
            return Call(ITCAddAltVoltParams, entry, component);
        default:
            return ITC_STIMULUS_ERROR;
    }
}

int32_t BuildSum(int32_t entry, const reading::Stimulus& stimulus) {
    ITCSummedParameters sum = {};
    sum.count = static_cast<int32_t>(stimulus.components.size());
    int32_t result = ITCSummedParams(entry, &sum);
    for (size_t k = 0; k < stimulus.components.size() && result == ITC_SUCCESS; ++k) {
        result = Add(entry, stimulus.components[k]);
    }
    return result;
}

// The builder refuses latencies below the shortest of today, which old recordings have: of a
// negative one it takes the low 16 bits.
int32_t BuildDynamicClamp(int32_t entry, const reading::Stimulus& stimulus, uint16_t latency) {
    constexpr int32_t kWords = 65536;
    const auto record = RecordOf<ITCGClampParameters>(stimulus);
    return ITCGClampParams(entry, &record, int32_t{latency} - kWords);
}

}  // namespace

int32_t BuildStimulus(int32_t entry, const reading::Stimulus& stimulus, uint16_t latency) {
    switch (stimulus.type) {
        case ITC_STIMULUS_SINE:
            return Call(ITCSineParams, entry, stimulus);
        case ITC_STIMULUS_NOISE:
            return Call(ITCNoiseParams, entry, stimulus);
        case ITC_STIMULUS_PULSE:
            return Call(ITCPulseParams, entry, stimulus);
        case ITC_STIMULUS_RAMP:
            return Call(ITCRampParams, entry, stimulus);
        case ITC_STIMULUS_SUMMED:
            return BuildSum(entry, stimulus);
        case ITC_STIMULUS_SEGMENTED_NOISE:
            return Call(ITCSegmentedNoiseParams, entry, stimulus);
        case ITC_STIMULUS_BINARY_NOISE:
            return Call(ITCBinaryNoiseParams, entry, stimulus);
        case ITC_STIMULUS_DYNAMIC_CLAMP:
            return BuildDynamicClamp(entry, stimulus, latency);
        case ITC_STIMULUS_ALTERNATING_VOLTAGE:
            return Call(ITCAltVoltageParams, entry, stimulus);
        case ITC_STIMULUS_SPATIAL:
            return Call(ITCSpatialParams, entry, stimulus);
        default:
            return ITC_STIMULUS_ERROR;
    }
}

}  // namespace corvantis::rig
