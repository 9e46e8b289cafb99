// The adders, which attach components to a channel's summed stimulus.
#include <cstring>

#include "Corvantis.h"
#include "ITCInitialize/State.h"
#include "ITCStimulus/Slots.h"

namespace corvantis {
namespace {

int32_t FirstFreeComponent(const ITCSummedParameters& summed) {
    int32_t k = 0;
    while (k < ITC_COMPONENTS && summed.components[k] != nullptr) ++k;
    return k;
}

template <class Record>
int32_t Add(uint32_t channel, const Record* params, int8_t type) {
    if (!IsStarted()) return ITC_NOT_STARTED;
    if (!IsChannel(channel) || params == nullptr) return ITC_STIMULUS_ERROR;
    ITCSummedParameters* summed = SummedSlotRecord(channel);
    if (summed == nullptr) return ITC_STIMULUS_ERROR;
    const int32_t k = FirstFreeComponent(*summed);
    if (k >= ITC_COMPONENTS || summed->count <= k) return ITC_STIMULUS_ERROR;
    // Before the allocation: a component that could not be allocated keeps its type.
    summed->componentType[k] = type;
    summed->components[k] = ITCMalloc(1, sizeof(Record));
    if (summed->components[k] == nullptr) return ITC_OUT_OF_MEMORY;
    std::memcpy(summed->components[k], params, sizeof(Record));
    return ITC_SUCCESS;
}

}  // namespace
}  // namespace corvantis

using corvantis::Add;

int32_t ITCAddSineParams(uint32_t channel, const ITCSineParameters* params) {
    return Add(channel, params, ITC_STIMULUS_SINE);
}
int32_t ITCAddNoiseParams(uint32_t channel, const ITCNoiseParameters* params) {
    return Add(channel, params, ITC_STIMULUS_NOISE);
}
int32_t ITCAddPulseParams(uint32_t channel, const ITCPulseParameters* params) {
    return Add(channel, params, ITC_STIMULUS_PULSE);
}
int32_t ITCAddRampParams(uint32_t channel, const ITCRampParameters* params) {
    return Add(channel, params, ITC_STIMULUS_RAMP);
}
int32_t ITCAddFilewaveParams(uint32_t channel, const ITCFilewaveParameters* params) {
    return Add(channel, params, ITC_STIMULUS_FILEWAVE);
}
int32_t ITCAddSegmentedNoiseParams(uint32_t channel, const ITCSegmentedNoiseParameters* params) {
    return Add(channel, params, ITC_STIMULUS_SEGMENTED_NOISE);
}
int32_t ITCAddBinaryNoiseParams(uint32_t channel, const ITCBinaryNoiseParameters* params) {
    return Add(channel, params, ITC_STIMULUS_BINARY_NOISE);
}
int32_t ITCAddGClampParams(uint32_t channel, const ITCGClampParameters* params) {
    return Add(channel, params, ITC_STIMULUS_DYNAMIC_CLAMP);
}
int32_t ITCAddCirclePulseParams(uint32_t channel, const ITCCirclePulseParameters* params) {
    return Add(channel, params, ITC_STIMULUS_CIRCLE_PULSE);
}
int32_t ITCAddAltVoltParams(uint32_t channel, const ITCAlternateVoltageParameters* params) {
    return Add(channel, params, ITC_STIMULUS_ALTERNATING_VOLTAGE);
}
