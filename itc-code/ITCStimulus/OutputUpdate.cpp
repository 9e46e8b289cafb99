// Summing a compound stimulus, and computing all sequence entries into the output buffer.
#include <array>

#include "Corvantis.h"
#include "ITCFileIO/StimulusTypes.h"
#include "ITCInitialize/State.h"
#include "ITCStimulus/Slots.h"
#include "ITCUtilities/Memory.h"
#include "ITCWaveforms/Sum.h"

namespace corvantis {
namespace {

using SampleBlock = OwnedBlock<uint16_t>;

// Unplayed samples of a transient buffer are 0, never what the memory held before.
SampleBlock AllocateSamples(int64_t points) { return AllocateZeroed<uint16_t>(points); }

// A record that is not there or would leave the buffer is calculated without: it gets as far as its
// printed line, as every calculation does.
int32_t CalculateWithin(uint32_t type, uint16_t* buffer, const void* record, int64_t points) {
    const bool fits = record != nullptr && TypeRow(type).staysWithin(record, points);
    const int32_t result = ITCCalcStimulus(type, buffer, fits ? record : nullptr);
    return result == ITC_SUCCESS ? ITC_SUCCESS : ITC_STIMULUS_ERROR;
}

int32_t AddComponents(uint16_t* output, uint16_t* scratch, const ITCSummedParameters& summed) {
    const int64_t points = CurrentEpochHeader().epochPoints;
    const auto calculate = [&](int32_t k, uint16_t* buffer) -> int32_t {
        const void* component = ComponentRecord(summed, k);
        if (component == nullptr) return ITC_STIMULUS_ERROR;
        return CalculateWithin(static_cast<uint32_t>(summed.componentType[k]), buffer, component,
                               points);
    };
    return SumComponents({output, static_cast<size_t>(points)}, scratch, summed.count, calculate);
}

int32_t SumSlot(uint32_t channel, uint16_t* output) {
    const ITCSummedParameters* summed = SummedSlotRecord(channel);
    const SampleBlock scratch = AllocateSamples(CurrentEpochHeader().epochPoints);
    // A caller's own sum says ITC_OUT_OF_MEMORY: applications tell the two apart.
    if (summed == nullptr || scratch == nullptr) return ITC_STIMULUS_ERROR;
    return AddComponents(output, scratch.get(), *summed);
}

int32_t CalculateEntry(uint32_t entry, uint16_t* output) {
    const int32_t type = SlotType(entry);
    if (type == ITC_STIMULUS_SUMMED) return SumSlot(entry, output);
    return CalculateWithin(static_cast<uint32_t>(type), output, SlotRecord(entry),
                           CurrentEpochHeader().epochPoints);
}

bool FitsOutput(const ITCEpochHeader& header) {
    if (header.sequenceLength < 0 || header.sequenceLength > ITC_CHANNELS) return false;
    const int64_t samples = int64_t{header.epochPoints} * header.sequenceLength;
    return samples == 0 || (OutputSamples() != nullptr && samples <= BufferCapacity());
}

}  // namespace
}  // namespace corvantis

int32_t ITCStmCreateSum(uint16_t* output, const ITCSummedParameters* summed) {
    using namespace corvantis;
    SampleBlock scratch = AllocateSamples(CurrentEpochHeader().epochPoints);
    if (scratch == nullptr) return ITC_OUT_OF_MEMORY;
    const int32_t result = AddComponents(output, scratch.get(), *summed);
    // A failed sum keeps its work buffer: callers were written to that, and it is small and rare.
    if (result != ITC_SUCCESS) (void)scratch.release();
    return result;
}

int32_t ITCUpdateStm() {
    using namespace corvantis;
    if (!IsStarted()) return ITC_NOT_STARTED;
    const ITCEpochHeader& header = CurrentEpochHeader();
    if (!FitsOutput(header)) return ITC_STIMULUS_ERROR;
    std::array<SampleBlock, ITC_CHANNELS> blocks;
    std::array<uint16_t*, ITC_CHANNELS> entries = {};
    for (uint32_t entry = 0; entry < static_cast<uint32_t>(header.sequenceLength); ++entry) {
        blocks[entry] = AllocateSamples(header.epochPoints);
        entries[entry] = blocks[entry].get();
        if (entries[entry] == nullptr) return ITC_OUT_OF_MEMORY;
        const int32_t result = CalculateEntry(entry, entries[entry]);
        if (result != ITC_SUCCESS) return result;
    }
    ITCInterleaveData(OutputSamples(), entries.data(), header.sequenceLength, header.epochPoints);
    return ITC_SUCCESS;
}
