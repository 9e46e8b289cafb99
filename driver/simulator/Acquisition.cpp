// One acquisition: the device's outputs and inputs, and the neuron between them.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <span>

#include "simulator/Device.h"
#include "simulator/ModelNeuron.h"

namespace {

using itc18::Device;
using itc18::ModelNeuron;

// What stands at each output, by its selector.
using OutputLevels = std::array<uint16_t, itc18::kDigitalOutput + 1>;

double CommandCurrent(const OutputLevels& levels) {
    return static_cast<double>(static_cast<int16_t>(levels[0])) /
           ITC18Simulator_CountsPerPicoampere;
}

uint16_t PotentialCounts(double potential) {
    const double counts = std::round(potential * ITC18Simulator_CountsPerMillivolt);
    return static_cast<uint16_t>(static_cast<int16_t>(std::clamp(counts, -32768.0, 32767.0)));
}

void SetOutputs(OutputLevels& levels, std::span<const uint32_t> sequence, const uint16_t* samples) {
    for (size_t entry = 0; entry < sequence.size(); ++entry)
        levels[itc18::OutputOf(sequence[entry])] = samples[entry];
}

uint16_t ReadInput(uint32_t input, const OutputLevels& levels, const ModelNeuron& neuron) {
    if (input == 0) return PotentialCounts(neuron.potential);
    if (input == itc18::kDigitalInput) return levels[itc18::kDigitalOutput];
    return input < itc18::kDigitalOutput ? levels[input] : uint16_t{0};
}

void PlayPasses(const ITC18Simulator_State& state, const uint16_t* output, uint16_t* input,
                size_t points) {
    const auto entries = static_cast<size_t>(state.sequenceLength);
    const std::span sequence(state.sequence, entries);
    const double passDuration = static_cast<double>(state.interval) * state.sequenceLength;
    OutputLevels levels{};
    SetOutputs(levels, sequence, output);
    ModelNeuron neuron = itc18::SteadyState(CommandCurrent(levels));
    for (size_t point = 0; point < points; ++point, output += entries, input += entries) {
        SetOutputs(levels, sequence, output);
        for (size_t entry = 0; entry < entries; ++entry)
            input[entry] = ReadInput(itc18::InputOf(sequence[entry]), levels, neuron);
        itc18::Advance(neuron, CommandCurrent(levels), passDuration);
    }
}

}  // namespace

int32_t ITC18Simulator_Play(void* device, const uint16_t* output, uint16_t* input, int32_t points) {
    Device* const opened = itc18::OpenDevice(device);
    if (opened == nullptr) return ITC18Simulator_NotOpen;
    if (!opened->state.prepared) return ITC18Simulator_NotPrepared;
    if (opened->state.interval == 0) return ITC18Simulator_NoInterval;
    if (output == nullptr || input == nullptr) return ITC18Simulator_NullPointer;
    if (points < 1) return ITC18Simulator_BadPoints;
    PlayPasses(opened->state, output, input, static_cast<size_t>(points));
    opened->state.prepared = 0;
    return ITC18Simulator_Success;
}
