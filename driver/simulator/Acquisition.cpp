// One acquisition: the device's outputs and inputs, and the neuron between them.
#include <cstddef>
#include <new>
#include <span>

#include "simulator/Wiring.h"
#include "simulator/cells/Preparation.h"

namespace {

using itc18::Device;
using itc18::OutputLevels;
using itc18::Preparation;

uint16_t ReadInput(uint32_t input, const OutputLevels& levels, const Preparation& neuron) {
    return input == 0 ? itc18::Converted(neuron.Signal()) : itc18::EchoAt(input, levels);
}

void PlayPasses(const ITC18Simulator_State& state, const uint16_t* output, uint16_t* input,
                size_t points) {
    const auto entries = static_cast<size_t>(state.sequenceLength);
    const std::span sequence(state.sequence, entries);
    const double passDuration = static_cast<double>(state.interval) * state.sequenceLength;
    OutputLevels levels{};
    itc18::SetOutputs(levels, sequence, output);
    Preparation neuron{itc18::PreparationSettings{}};
    neuron.Settle(itc18::CommandCounts(levels));
    for (size_t point = 0; point < points; ++point, output += entries, input += entries) {
        itc18::SetOutputs(levels, sequence, output);
        for (size_t entry = 0; entry < entries; ++entry)
            input[entry] = ReadInput(itc18::InputOf(sequence[entry]), levels, neuron);
        neuron.Advance(itc18::CommandCounts(levels), passDuration);
    }
}

}  // namespace

int32_t ITC18Simulator_Play(void* device, const uint16_t* output, uint16_t* input, int32_t points) {
    Device* const opened = itc18::OpenDevice(device);
    if (opened == nullptr || opened->lost) return ITC18Simulator_NotOpen;
    if (!opened->state.prepared) return ITC18Simulator_NotPrepared;
    if (opened->state.interval == 0) return ITC18Simulator_NoInterval;
    if (output == nullptr || input == nullptr) return ITC18Simulator_NullPointer;
    if (points < 1) return ITC18Simulator_BadPoints;
#if defined(__cpp_exceptions)
    try {
        PlayPasses(opened->state, output, input, static_cast<size_t>(points));
    } catch (const std::bad_alloc&) {
        return ITC18Simulator_OutOfMemory;
    }
#else
    PlayPasses(opened->state, output, input, static_cast<size_t>(points));
#endif
    opened->state.prepared = 0;
    return ITC18Simulator_Success;
}
