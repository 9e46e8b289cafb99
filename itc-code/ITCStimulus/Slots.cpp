// The four stimulus slots.
#include "ITCStimulus/Slots.h"

#include <algorithm>

#include "ITCFileIO/StimulusTypes.h"
#include "ITCInitialize/State.h"

namespace corvantis {
namespace {

bool HoldsPointers(uint32_t type) {
    return type == ITC_STIMULUS_FILEWAVE || type == ITC_STIMULUS_SUMMED;
}

// A record that the application itself put into the slot is taken at its word.
bool CanBeReadAs(uint32_t channel, uint32_t type) {
    if (!IsInstalled(channel) || InstalledType(channel) == type) return true;
    if (HoldsPointers(type)) return false;
    return TypeRow(InstalledType(channel)).record->memorySize >= TypeRow(type).record->memorySize;
}

void ReleaseComponents(ITCSummedParameters& summed) {
    for (int32_t k = 0; k < summed.count && k < ITC_COMPONENTS; ++k) {
        ITCFree(summed.components[k]);
        summed.components[k] = nullptr;
    }
}

}  // namespace

int32_t SlotType(uint32_t channel) { return CurrentEpochHeader().stimType[channel]; }

void* SlotRecord(uint32_t channel, int32_t type) {
    return CanBeReadAs(channel, static_cast<uint32_t>(type)) ? StmParameters[channel] : nullptr;
}

void* SlotRecord(uint32_t channel) { return SlotRecord(channel, SlotType(channel)); }

size_t SlotRecordSize(uint32_t channel, size_t limit) {
    if (!IsStarted() || StmParameters[channel] == nullptr) return 0;
    if (!IsInstalled(channel)) return limit;
    return std::min(limit, TypeRow(InstalledType(channel)).record->memorySize);
}

bool HoldsOwnType(uint32_t channel) {
    if (StmParameters[channel] == nullptr) return false;
    return !IsInstalled(channel) ||
           InstalledType(channel) == static_cast<uint32_t>(SlotType(channel));
}

ITCSummedParameters* SummedSlotRecord(uint32_t channel) {
    if (SlotType(channel) != ITC_STIMULUS_SUMMED) return nullptr;
    return static_cast<ITCSummedParameters*>(SlotRecord(channel, ITC_STIMULUS_SUMMED));
}

const void* ComponentRecord(const ITCSummedParameters& summed, int64_t component) {
    if (component < 0 || component >= summed.count || component >= ITC_COMPONENTS) return nullptr;
    return summed.components[component];
}

void ReleaseSlotRecord(uint32_t channel) {
    ITCFree(StmParameters[channel]);
    InstallSlotRecord(channel, nullptr, 0);
}

void ReleaseSlot(uint32_t channel) {
    ITCSummedParameters* summed = SummedSlotRecord(channel);
    if (summed != nullptr) ReleaseComponents(*summed);
    ReleaseSlotRecord(channel);
}

void ReleaseSlotRecordsAtEnd() {
    for (void* record : StmParameters) ITCFree(record);
    ForgetInstalledRecords();
}

}  // namespace corvantis

int32_t ITCFreeParams(uint32_t channel) {
    using namespace corvantis;
    if (IsStarted() && IsChannel(channel)) ReleaseSlot(channel);
    return ITC_SUCCESS;
}
