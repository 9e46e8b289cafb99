// The dispatcher on the stimulus type, filtered noise's choice of method, and new noise seeds.
#include "Corvantis.h"
#include "ITCFileIO/StimulusTypes.h"
#include "ITCInitialize/State.h"
#include "ITCStimulus/FilteredNoise.h"
#include "ITCStimulus/Shapes.h"
#include "ITCStimulus/Slots.h"
#include "ITCUtilities/Diagnostics.h"

namespace corvantis {
namespace {

constexpr int8_t kLastVersionWithSmoothedNoise = 4;

using Calculator = int32_t (*)(uint16_t* buffer, const void* params);

template <class Record>
int32_t Calculate(uint16_t* buffer, const void* params) {
    if (params == nullptr) return ITC_STIMULUS_ERROR;
    const auto& record = *static_cast<const Record*>(params);
    if (!IsComputable(record)) return ITC_STIMULUS_ERROR;
    CreateWaveform(buffer, record);
    return ITC_SUCCESS;
}

// Out of memory becomes 2 as well: callers cannot tell it from a window that does not fit.
int32_t CalculateNoise(uint16_t* buffer, const void* params) {
    const auto* record = static_cast<const ITCNoiseParameters*>(params);
    const bool done = record != nullptr && ITCStmCreateNoise(buffer, record) == ITC_SUCCESS;
    return done ? ITC_SUCCESS : ITC_STIMULUS_ERROR;
}

int32_t CalculateDynamicClamp(uint16_t* buffer, const void* /*params*/) {
    CreateDynamicClampWaveform(buffer);
    return ITC_SUCCESS;
}

int32_t CalculateAlternatingVoltage(uint16_t* buffer, const void* params) {
    PrintLine("alt voltage create");
    return Calculate<ITCAlternateVoltageParameters>(buffer, params);
}

int32_t CalculateNothing(uint16_t* /*buffer*/, const void* /*params*/) {
    return ITC_STIMULUS_ERROR;
}

// By type code; generic and circle-pulse records have no waveform, a sum is expanded by its caller.
constexpr Calculator kCalculators[kLargestType + 1] = {
    CalculateNothing,
    Calculate<ITCSineParameters>,
    CalculateNoise,
    Calculate<ITCPulseParameters>,
    Calculate<ITCRampParameters>,
    Calculate<ITCFilewaveParameters>,
    CalculateNothing,
    CalculateNothing,
    Calculate<ITCTrigSeriesParameters>,
    Calculate<ITCSegmentedNoiseParameters>,
    Calculate<ITCBinaryNoiseParameters>,
    CalculateDynamicClamp,
    CalculateNothing,
    CalculateAlternatingVoltage,
    Calculate<ITCSpatialStmParameters>,
};

template <class Record>
int32_t Reseed(void* record, int32_t newSeed) {
    static_cast<Record*>(record)->seed = newSeed;
    return ITC_SUCCESS;
}

int32_t ReseedRecord(void* record, int32_t type, int32_t newSeed) {
    if (record == nullptr) return ITC_STIMULUS_ERROR;
    switch (type) {
        case ITC_STIMULUS_NOISE:
            return Reseed<ITCNoiseParameters>(record, newSeed);
        case ITC_STIMULUS_SEGMENTED_NOISE:
            return Reseed<ITCSegmentedNoiseParameters>(record, newSeed);
        case ITC_STIMULUS_BINARY_NOISE:
            return Reseed<ITCBinaryNoiseParameters>(record, newSeed);
        default:
            return ITC_STIMULUS_ERROR;
    }
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
    if (type > kLargestType || buffer == nullptr) return ITC_STIMULUS_ERROR;
    return kCalculators[type](buffer, params);
}

int32_t ITCStmCreateNoise(uint16_t* buffer, const ITCNoiseParameters* params) {
    using namespace corvantis;
    const bool smoothed = CurrentFileHeader().version <= kLastVersionWithSmoothedNoise;
    return smoothed ? CreateSmoothedNoise(buffer, *params) : CreateSpectralNoise(buffer, *params);
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
