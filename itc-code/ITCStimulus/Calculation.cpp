// The dispatcher on the stimulus type, and new noise seeds.
#include <cstring>

#include "Corvantis.h"
#include "ITCFileIO/StimulusTypes.h"
#include "ITCInitialize/State.h"
#include "ITCStimulus/Slots.h"
#include "ITCUtilities/Diagnostics.h"
#include "ITCUtilities/Random/LibraryGenerators.h"

namespace corvantis {
namespace {

int32_t ReseedRecord(void* record, int32_t type, int32_t newSeed) {
    const int32_t place = TypeRow(static_cast<uint32_t>(type)).places->seed;
    if (record == nullptr || place == kNoSuchField) return ITC_STIMULUS_ERROR;
    std::memcpy(static_cast<uint8_t*>(record) + place, &newSeed, sizeof newSeed);
    return ITC_SUCCESS;
}

int32_t ReseedComponent(ITCSummedParameters* summed, uint32_t component, int32_t newSeed) {
    if (summed == nullptr || ComponentRecord(*summed, component) == nullptr) {
        return ITC_STIMULUS_ERROR;
    }
    return ReseedRecord(summed->components[component], summed->componentType[component], newSeed);
}

}  // namespace
}  // namespace corvantis

int32_t ITCCalcStimulus(uint32_t type, uint16_t* buffer, const void* params) {
    using namespace corvantis;
    PrintStimulusType(type);
    if (!IsStarted()) return ITC_NOT_STARTED;
    if (buffer == nullptr) return ITC_STIMULUS_ERROR;
    if (type == ITC_STIMULUS_ALTERNATING_VOLTAGE) PrintLine("alt voltage create");
    return CalculateWaveform(type, buffer, params, CurrentEpochSettings(), LibraryGenerators());
}

int32_t ITCNewRandomSeed(int32_t newSeed, uint32_t channel, uint32_t component) {
    using namespace corvantis;
    if (!IsStarted()) return ITC_NOT_STARTED;
    if (!IsChannel(channel)) return ITC_STIMULUS_ERROR;
    if (SlotType(channel) == ITC_STIMULUS_SUMMED) {
        return ReseedComponent(SummedSlotRecord(channel), component, newSeed);
    }
    return ReseedRecord(SlotRecord(channel), SlotType(channel), newSeed);
}
