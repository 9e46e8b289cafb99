// The simulated interface: its wiring, and what its model neuron sees of it.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <vector>

#include "simulator/ITC18Simulator.h"

namespace {

using Samples = std::vector<uint16_t>;

class SimulatorTest : public testing::Test {
  protected:
    SimulatorTest() { ITC18Simulator_Reset(); }
    ~SimulatorTest() override { ITC18Simulator_Reset(); }

    // Leaves in `samples` what the inputs saw.
    void Play(const std::vector<uint32_t>& words, int32_t interval, const Samples& output) {
        const auto entries = static_cast<int32_t>(words.size());
        const auto points = static_cast<int32_t>(output.size()) / entries;
        samples = output;
        EXPECT_TRUE(ITC18_Open(device, 0) == 0 && ITC18_Initialize(device, 0) == 0);
        EXPECT_EQ(ITC18_SetSequence(device, entries, words.data()), 0);
        EXPECT_EQ(ITC18_SetSamplingInterval(device, interval, 0), 0);
        EXPECT_EQ(ITC18_InitializeAcquisition(device), 0);
        EXPECT_EQ(ITC18Simulator_Play(device, samples.data(), samples.data(), points), 0);
    }

    // Not cleared, as a caller's allocation is not: garbage must not pass for an open device.
    std::vector<uint8_t> memory =
        std::vector<uint8_t>(static_cast<size_t>(ITC18_GetStructureSize()), uint8_t{0x18});
    void* device = memory.data();
    Samples samples = {0};
};

TEST_F(SimulatorTest, InputsSeeTheOutputOfTheirNumber) {
    // Inputs 1, 3, D, 2, 4 beside outputs 3, 1, D, D, 0: output 2 is not driven, the second D wins.
    Play({0x1880, 0x0980, 0x2400, 0x2100, 0xC200}, 4, {100, 40000, 7, 8, 0, 101, 40001, 9, 10, 0});
    EXPECT_EQ(samples, (Samples{40000, 100, 8, 0, 0, 40001, 101, 10, 0, 0}));
}

// 8 counts a picoampere, 32 a millivolt: 200 pA charge 20 pF by 1 mV in 100 µs. Far below rest the
// gates are shut and Ohm's law holds: V = -54.4 mV - I / 6 nS. Jumps to there pass through the
// fastest rates and must not explode.
TEST_F(SimulatorTest, ChargesItsMembraneAndFollowsOhmsLawFarBelowRest) {
    Samples jumps(4000, 0);
    std::fill(jumps.begin() + 200, jumps.begin() + 1000, uint16_t{1600});
    std::fill(jumps.begin() + 1000, jumps.begin() + 2000, static_cast<uint16_t>(-3200));
    std::fill(jumps.begin() + 2000, jumps.begin() + 3000, uint16_t{0x7FFF});
    std::fill(jumps.begin() + 3000, jumps.end(), uint16_t{0x8000});
    Play({0xC000}, 100, jumps);
    EXPECT_EQ(int16_t(samples[200]), -65 * 32) << "a command acts after its sample";
    EXPECT_NEAR(int16_t(samples[201]), -64 * 32, 2);
    EXPECT_NEAR(int16_t(samples[1999]) / 32.0, -54.4 - 400 / 6.0, 0.5);
    EXPECT_NEAR(int16_t(samples[3999]) / 32.0, -54.4 - 4096 / 6.0, 0.05);
}

}  // namespace
