// One acquisition: the device's outputs and inputs, and the neuron between them.
#include <cstddef>
#include <span>

#include "simulator/ModelNeuron.h"
#include "simulator/Wiring.h"

namespace {

using itc18::Device;
using itc18::ModelNeuron;
using itc18::OutputLevels;

double CommandCurrent(const OutputLevels& levels) {
    return static_cast<double>(itc18::CommandCounts(levels)) / ITC18Simulator_CountsPerPicoampere;
}

uint16_t ReadInput(uint32_t input, const OutputLevels& levels, const ModelNeuron& neuron) {
    return input == 0 ? itc18::Converted(neuron.potential * ITC18Simulator_CountsPerMillivolt)
                      : itc18::EchoAt(input, levels);
}

void PlayPasses(const ITC18Simulator_State& state, const uint16_t* output, uint16_t* input,
                size_t points) {
    const auto entries = static_cast<size_t>(state.sequenceLength);
    const std::span sequence(state.sequence, entries);
    const double passDuration = static_cast<double>(state.interval) * state.sequenceLength;
    OutputLevels levels{};
    itc18::SetOutputs(levels, sequence, output);
    ModelNeuron neuron = itc18::SteadyState(CommandCurrent(levels));
    for (size_t point = 0; point < points; ++point, output += entries, input += entries) {
        itc18::SetOutputs(levels, sequence, output);
        for (size_t entry = 0; entry < entries; ++entry)
            input[entry] = ReadInput(itc18::InputOf(sequence[entry]), levels, neuron);
        itc18::Advance(neuron, CommandCurrent(levels), passDuration);
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
    PlayPasses(opened->state, output, input, static_cast<size_t>(points));
    opened->state.prepared = 0;
    return ITC18Simulator_Success;
}
