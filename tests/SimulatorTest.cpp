// The simulated interface: its wiring, and what its model neuron sees of it.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <vector>

#include "simulator/ITC18Simulator.h"

namespace {

using Samples = std::vector<uint16_t>;
using Words = std::vector<uint32_t>;

class SimulatorTest : public testing::Test {
  protected:
    SimulatorTest() { ITC18Simulator_Reset(); }
    ~SimulatorTest() override { ITC18Simulator_Reset(); }

    int32_t Load(const Words& words) {
        return ITC18_SetSequence(device, static_cast<int32_t>(words.size()), words.data());
    }
    int32_t Play(int32_t points) {
        return ITC18Simulator_Play(device, samples.data(), samples.data(), points);
    }
    // Leaves in `samples` what the inputs saw.
    void Play(const Words& words, int32_t interval, const Samples& output) {
        samples = output;
        EXPECT_TRUE(ITC18_Open(device, 0) == 0 && ITC18_Initialize(device, 0) == 0);
        EXPECT_TRUE(Load(words) == 0 && ITC18_SetSamplingInterval(device, interval, 0) == 0);
        EXPECT_EQ(ITC18_InitializeAcquisition(device), 0);
        EXPECT_EQ(Play(static_cast<int32_t>(output.size() / words.size())), 0);
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
    Samples jumps(4000, 0), fine(40000, 0);
    std::fill(jumps.begin() + 200, jumps.begin() + 1000, uint16_t{1600});
    std::fill(jumps.begin() + 1000, jumps.begin() + 2000, static_cast<uint16_t>(-3200));
    std::fill(jumps.begin() + 2000, jumps.begin() + 3000, uint16_t{0x7FFF});
    std::fill(jumps.begin() + 3000, jumps.end(), uint16_t{0x8000});
    Play({0xC000}, 100, jumps);
    const Samples first = samples;
    EXPECT_EQ(int16_t(first[200]), -65 * 32) << "a command acts after its sample";
    EXPECT_NEAR(int16_t(first[201]), -64 * 32, 2);
    EXPECT_NEAR(int16_t(first[1999]) / 32.0, -54.4 - 400 / 6.0, 0.5);
    EXPECT_NEAR(int16_t(first[3999]) / 32.0, -54.4 - 4096 / 6.0, 0.05);
    // The same step after 20 ms of rest, in four entries of 5 µs each.
    for (size_t i = 4000; i < fine.size(); i += 4) fine[i] = 1600;
    Play({0x0000, 0x0880, 0x0880, 0xC880}, 5, fine);
    for (size_t point = 0; point < 1000; ++point)
        ASSERT_NEAR(int16_t(samples[20 * point]), int16_t(first[point]), 1) << point;
}

}  // namespace
