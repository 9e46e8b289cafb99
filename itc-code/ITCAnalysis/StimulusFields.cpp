// The getters of stimulus values by epoch number, for a channel's record or one component of a sum.
#include "Corvantis.h"
#include "ITCInitialize/State.h"
#include "ITCStimulus/Slots.h"

namespace corvantis {
namespace {

// What a getter looks at: a record and its type.
struct Stimulus {
    int8_t type = 0;
    const void* record = nullptr;
};

Stimulus ComponentOf(const ITCSummedParameters* summed, int32_t component) {
    if (summed == nullptr || ComponentRecord(*summed, component) == nullptr) return {};
    return {summed->componentType[component], summed->components[component]};
}

// A slot beyond the epoch's entries answers too, if it holds a record of the header's type.
bool HasStimulus(uint32_t slot) { return IsChannel(slot) && HoldsOwnType(slot); }

// Every failure of the read becomes ITC_FILE_ERROR, also a library that was not started.
int32_t FindStimulus(int32_t epoch, int32_t channel, int32_t component, Stimulus& stimulus) {
    if (ITCEpochParameters(epoch) != ITC_SUCCESS) return ITC_FILE_ERROR;
    const uint32_t slot = static_cast<uint32_t>(channel);
    if (!HasStimulus(slot)) return ITC_STIMULUS_ERROR;
    stimulus = {static_cast<int8_t>(SlotType(slot)), SlotRecord(slot)};
    if (stimulus.type == ITC_STIMULUS_SUMMED) {
        stimulus = ComponentOf(SummedSlotRecord(slot), component);
    }
    return stimulus.record == nullptr ? ITC_STIMULUS_ERROR : ITC_SUCCESS;
}

using Query = int32_t (*)(int32_t* value, int8_t type, const void* record);

int32_t DeliverValue(int32_t epoch, int32_t channel, int32_t component, Query query,
                     int32_t* result) {
    Stimulus stimulus;
    const int32_t found = FindStimulus(epoch, channel, component, stimulus);
    return found == ITC_SUCCESS ? query(result, stimulus.type, stimulus.record) : found;
}

// The header has a type for every slot, whether its sequence has the entry or not, and a sum one
// for every component, whether it is in use or not.
int32_t DeliverType(int32_t epoch, int32_t channel, int32_t component, int32_t* result) {
    if (ITCEpochParameters(epoch) != ITC_SUCCESS) return ITC_FILE_ERROR;
    const uint32_t slot = static_cast<uint32_t>(channel);
    if (!IsChannel(slot)) return ITC_STIMULUS_ERROR;
    const int32_t type = SlotType(slot);
    if (type != ITC_STIMULUS_SUMMED) {
        *result = type;
        return ITC_SUCCESS;
    }
    const ITCSummedParameters* summed = SummedSlotRecord(slot);
    if (summed == nullptr || component < 0 || component >= ITC_COMPONENTS) {
        return ITC_STIMULUS_ERROR;
    }
    *result = summed->componentType[component];
    return ITC_SUCCESS;
}

int32_t RetrieveSeed(int32_t* value, int8_t type, const void* record) {
    if (type != ITC_STIMULUS_NOISE) return ITC_STIMULUS_ERROR;
    *value = static_cast<const ITCNoiseParameters*>(record)->seed;
    return ITC_SUCCESS;
}

// A component of a sum is no dynamic clamp of its channel: only the channel's own record counts.
int32_t DeliverReversal(int32_t epoch, int32_t channel, float ITCGClampParameters::*reversal,
                        float* result) {
    if (ITCEpochParameters(epoch) != ITC_SUCCESS) return ITC_FILE_ERROR;
    const uint32_t slot = static_cast<uint32_t>(channel);
    if (!HasStimulus(slot) || SlotType(slot) != ITC_STIMULUS_DYNAMIC_CLAMP) {
        return ITC_STIMULUS_ERROR;
    }
    *result = static_cast<const ITCGClampParameters*>(SlotRecord(slot))->*reversal;
    return ITC_SUCCESS;
}

}  // namespace
}  // namespace corvantis

using corvantis::DeliverReversal;
using corvantis::DeliverValue;

int32_t ITCGetStmType(int32_t epoch, int32_t channel, int32_t component, int32_t* result) {
    return corvantis::DeliverType(epoch, channel, component, result);
}
int32_t ITCGetStmAmp(int32_t epoch, int32_t channel, int32_t component, int32_t* result) {
    return DeliverValue(epoch, channel, component, ITCRetrieveStmAmp, result);
}
int32_t ITCGetStmMean(int32_t epoch, int32_t channel, int32_t component, int32_t* result) {
    return DeliverValue(epoch, channel, component, ITCRetrieveStmMean, result);
}
int32_t ITCGetStmPts(int32_t epoch, int32_t channel, int32_t component, int32_t* result) {
    return DeliverValue(epoch, channel, component, ITCRetrieveStmPts, result);
}
int32_t ITCGetStmPrePts(int32_t epoch, int32_t channel, int32_t component, int32_t* result) {
    return DeliverValue(epoch, channel, component, ITCRetrieveStmPrePts, result);
}
int32_t ITCGetStmTailPts(int32_t epoch, int32_t channel, int32_t component, int32_t* result) {
    return DeliverValue(epoch, channel, component, ITCRetrieveStmTailPts, result);
}
int32_t ITCGetSeed(int32_t epoch, int32_t channel, int32_t component, int32_t* result) {
    return DeliverValue(epoch, channel, component, corvantis::RetrieveSeed, result);
}
int32_t ITCGetGClampERev(int32_t epoch, int32_t channel, float* result) {
    return DeliverReversal(epoch, channel, &ITCGClampParameters::excitatoryReversal, result);
}
int32_t ITCGetGClampIRev(int32_t epoch, int32_t channel, float* result) {
    return DeliverReversal(epoch, channel, &ITCGClampParameters::inhibitoryReversal, result);
}
