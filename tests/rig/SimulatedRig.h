// A simulated interface that is set up for one sequence, and epochs for it.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

#include "simulator/ITC18Simulator.h"

namespace corvantis_test {

using Samples = std::vector<uint16_t>;
using Words = std::vector<uint32_t>;

inline PlayerSetting Number(const char* name, double number) { return {name, "", number}; }
inline PlayerSetting Text(const char* name, const char* text) { return {name, text, NAN}; }

class SimulatedRig {
  public:
    SimulatedRig(Words sequence, int32_t entryInterval)
        : words(std::move(sequence)), interval(entryInterval) {
        ITC18Simulator_Reset();
        EXPECT_EQ(ITC18_Open(device, 0), 0);
        EXPECT_EQ(ITC18_Initialize(device, 0), 0);
        EXPECT_EQ(ITC18_SetSequence(device, Entries(), words.data()), 0);
        EXPECT_EQ(ITC18_SetSamplingInterval(device, interval, 0), 0);
        Prepare();
    }
    ~SimulatedRig() { ITC18Simulator_Reset(); }
    SimulatedRig(const SimulatedRig&) = delete;

    void Prepare() { EXPECT_EQ(ITC18_InitializeAcquisition(device), 0); }
    int32_t Entries() const { return static_cast<int32_t>(words.size()); }

    PlayerEpoch Epoch(const Samples& stimulus, int32_t trigger = 0) const {
        PlayerEpoch epoch{};
        epoch.entries = Entries();
        epoch.sequence = words.data();
        epoch.interval = interval * Entries();
        epoch.points = static_cast<int32_t>(stimulus.size()) / Entries();
        epoch.trigger = trigger;
        return epoch;
    }

    // 0, 1, 2 … to every output, which the digital one shows at its input.
    Samples Ramp(int32_t points) const {
        Samples samples;
        for (int32_t k = 0; k < points * Entries(); ++k)
            samples.push_back(static_cast<uint16_t>(k));
        return samples;
    }

  private:
    std::vector<uint8_t> memory =
        std::vector<uint8_t>(static_cast<size_t>(ITC18_GetStructureSize()));

  public:
    Words words;
    int32_t interval;
    void* device = memory.data();
};

}  // namespace corvantis_test
