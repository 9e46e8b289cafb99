// The simulated interface: what it refuses, its wiring, and what its model neuron sees of it.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <utility>
#include <vector>

#include "simulator/ITC18Simulator.h"
#include "simulator/ModelNeuron.h"

namespace {

using Samples = std::vector<uint16_t>;
using Words = std::vector<uint32_t>;

class SimulatorTest : public testing::Test {
  protected:
    SimulatorTest() { ITC18Simulator_Reset(); }
    ~SimulatorTest() override { ITC18Simulator_Reset(); }

    void Start() {
        ASSERT_EQ(ITC18_Open(device, 0), 0);
        ASSERT_EQ(ITC18_Initialize(device, 0), 0);
        ASSERT_EQ(ITC18_SetSamplingInterval(device, 10, 0), 0);
    }
    static ITC18Simulator_State State(int32_t deviceNumber = 0) {
        ITC18Simulator_State state{};
        EXPECT_EQ(ITC18Simulator_GetState(deviceNumber, &state), 0);
        return state;
    }
    int32_t Load(const Words& words) {
        return ITC18_SetSequence(device, static_cast<int32_t>(words.size()), words.data());
    }
    Samples Play(const Words& words, int32_t interval, const Samples& output) {
        Samples input(output.size(), 0xDEAD);
        EXPECT_EQ(Load(words), 0);
        EXPECT_EQ(ITC18_SetSamplingInterval(device, interval, 0), 0);
        EXPECT_EQ(ITC18_InitializeAcquisition(device), 0);
        const auto points = static_cast<int32_t>(output.size() / words.size());
        EXPECT_EQ(ITC18Simulator_Play(device, output.data(), input.data(), points), 0);
        return input;
    }

    // Not cleared, as a caller's allocation is not: garbage must not pass for an open device.
    std::vector<uint8_t> memory =
        std::vector<uint8_t>(static_cast<size_t>(ITC18_GetStructureSize()), uint8_t{0x18});
    void* device = memory.data();
};

TEST_F(SimulatorTest, RefusesSetUpCallsOutOfOrder) {
    std::vector<uint8_t> other(memory.size());
    EXPECT_EQ(ITC18_Initialize(device, 0), ITC18Simulator_NotOpen);
    EXPECT_EQ(ITC18_Close(device), ITC18Simulator_NotOpen);
    EXPECT_EQ(ITC18_Open(nullptr, 0), ITC18Simulator_NullPointer);
    EXPECT_EQ(ITC18_Open(device, -1), ITC18Simulator_BadDeviceNumber);
    EXPECT_EQ(ITC18_Open(device, 4), ITC18Simulator_BadDeviceNumber);
    ASSERT_EQ(ITC18_Open(device, 3), 0);
    EXPECT_EQ(ITC18_SetSamplingInterval(device, 10, 0), ITC18Simulator_NotInitialized);
    EXPECT_EQ(Load({0xC000}), ITC18Simulator_NotInitialized);
    EXPECT_EQ(ITC18_InitializeAcquisition(device), ITC18Simulator_NotInitialized);
    EXPECT_EQ(ITC18_Initialize(device, 1), ITC18Simulator_BadOptions);
    ASSERT_EQ(ITC18_Initialize(device, 0), 0);
    EXPECT_EQ(ITC18_InitializeAcquisition(device), ITC18Simulator_NoSequence);
    EXPECT_EQ(ITC18_Open(other.data(), 3), 0) << "taken over";
    EXPECT_EQ(ITC18_Close(device), ITC18Simulator_NotOpen);
    EXPECT_EQ(ITC18_Open(other.data(), 2), 0);
    EXPECT_EQ(State(3).open, 0);
}

TEST_F(SimulatorTest, RefusesPlaysThatAreNotPrepared) {
    uint16_t sample = 0;
    const auto play = [&](int32_t n) { return ITC18Simulator_Play(device, &sample, &sample, n); };
    EXPECT_EQ(play(1), ITC18Simulator_NotOpen);
    Start();
    ASSERT_EQ(ITC18_Initialize(device, 0), 0);
    ASSERT_EQ(Load({0xC000}), 0);
    EXPECT_EQ(play(1), ITC18Simulator_NotPrepared);
    ASSERT_EQ(ITC18_InitializeAcquisition(device), 0);
    EXPECT_EQ(play(1), ITC18Simulator_NoInterval) << "initialising forgets the interval";
    ASSERT_EQ(ITC18_SetSamplingInterval(device, 10, 0), 0);
    EXPECT_EQ(play(0), ITC18Simulator_BadPoints);
    EXPECT_EQ(ITC18Simulator_Play(device, nullptr, &sample, 1), ITC18Simulator_NullPointer);
    EXPECT_EQ(play(1), 0);
    EXPECT_EQ(play(1), ITC18Simulator_NotPrepared) << "each play needs its own preparation";
    ASSERT_EQ(ITC18_InitializeAcquisition(device), 0);
    ASSERT_EQ(Load({0xC000}), 0);
    EXPECT_EQ(play(1), ITC18Simulator_NotPrepared) << "a new sequence needs one, too";
}

TEST_F(SimulatorTest, RefusesBadArgumentsAndKeepsTheLoadedOnes) {
    Start();
    ASSERT_EQ(Load({0x0800, 0xC080}), 0);
    const auto before = State();
    for (const auto& [words, result] : std::vector<std::pair<Words, int32_t>>{
             {{}, ITC18Simulator_BadSequenceLength},
             {Words(257, 0), ITC18Simulator_BadSequenceLength},
             {{0x0000}, ITC18Simulator_BadEndMark},
             {{0x4000}, ITC18Simulator_BadEndMark},
             {{0x8000}, ITC18Simulator_BadEndMark},
             {{0xC000, 0xC000}, ITC18Simulator_BadEndMark},
             {{0xC001}, ITC18Simulator_BadSequenceWord},
             {{0x1C000}, ITC18Simulator_BadSequenceWord},
             {{0xC480}, ITC18Simulator_BadSequenceWord},     // digital and analogue at once
             {{0xE800}, ITC18Simulator_BadSequenceWord}}) {  // the same of outputs
        EXPECT_EQ(Load(words), result) << testing::PrintToString(words);
    }
    EXPECT_EQ(ITC18_SetSequence(device, 1, nullptr), ITC18Simulator_NullPointer);
    const uint32_t marked = 0xC000;  // a sequence of one: what follows it may not be read
    EXPECT_EQ(ITC18_SetSequence(device, 49152, &marked), ITC18Simulator_BadSequenceLength);
    EXPECT_EQ(ITC18_SetSequence(device, -1, &marked), ITC18Simulator_BadSequenceLength);
    EXPECT_EQ(ITC18_SetSequence(device, 2, &marked), ITC18Simulator_BadEndMark);
    for (const int32_t interval : {INT32_MIN, -4, 0, 3, 65536, INT32_MAX})
        EXPECT_EQ(ITC18_SetSamplingInterval(device, interval, 0), ITC18Simulator_BadInterval);
    EXPECT_EQ(ITC18_SetSamplingInterval(device, 20, 1), ITC18Simulator_BadOptions);
    EXPECT_EQ(ITC18Simulator_FailCall(-1, 1), ITC18Simulator_BadCall);
    EXPECT_EQ(ITC18Simulator_FailCall(7, 1), ITC18Simulator_BadCall);
    const auto after = State();
    EXPECT_EQ(std::memcmp(&before, &after, sizeof before), 0);
    EXPECT_EQ(Load({0x0000, 0x0400, 0xE400}), 0);
    for (const int32_t interval : {4, 65535}) {
        EXPECT_EQ(ITC18_SetSamplingInterval(device, interval, 0), 0);
        EXPECT_EQ(State().interval, interval);
    }
}

TEST_F(SimulatorTest, InputsSeeTheOutputOfTheirNumber) {
    Start();
    // Inputs 1, 3, D, 2, 4 beside outputs 3, 1, D, D, 0: output 2 is not driven, the second D wins.
    const Samples input = Play({0x1880, 0x0980, 0x2400, 0x2100, 0xC200}, 4,
                               {100, 40000, 7, 8, 0, 101, 40001, 9, 10, 0});
    EXPECT_EQ(input, (Samples{40000, 100, 8, 0, 0, 40001, 101, 10, 0, 0}));
}

TEST_F(SimulatorTest, PlaysAreRepeatableInPlaceAndFreeOfTheSampling) {
    Start();
    Samples step(2000, 0);
    std::fill(step.begin() + 200, step.end(), uint16_t{1600});
    const Samples first = Play({0xC000}, 100, step);
    // The command of point 200 acts after its sample: 200 pA charge 20 pF by 1 mV in 100 µs.
    EXPECT_EQ(first[200], first[0]);
    EXPECT_NEAR(int16_t(first[201]) - int16_t(first[200]), 32, 2);
    ASSERT_EQ(ITC18_InitializeAcquisition(device), 0);
    ASSERT_EQ(ITC18Simulator_Play(device, step.data(), step.data(), 2000), 0);
    EXPECT_EQ(step, first);
    // The same 200 pA after 20 ms of rest, in four entries of 5 µs each.
    Samples fine(40000, 0);
    for (size_t i = 4000; i < fine.size(); i += 4) fine[i] = 1600;
    const Samples seen = Play({0x0000, 0x0880, 0x0880, 0xC880}, 5, fine);
    for (size_t point = 0; point < 2000; ++point)
        ASSERT_NEAR(int16_t(seen[20 * point]), int16_t(first[point]), 1) << point;
}

TEST_F(SimulatorTest, RestsAtMinus65AndTakesCommandsIn400PicoamperesPerVolt) {
    Start();
    const auto millivolts = [&](int counts) {
        const Samples held = Play({0xC000}, 1000, Samples(3, static_cast<uint16_t>(counts)));
        EXPECT_EQ(held[0], held[2]) << "not a steady state";
        const double potential = itc18::SteadyState(counts / 8.0).potential;
        EXPECT_EQ(int16_t(held[0]), std::lround(potential * 32)) << "not the nearest count";
        return int16_t(held[0]) / ITC18Simulator_CountsPerMillivolt;
    };
    EXPECT_NEAR(millivolts(0), -65.0, 0.05);
    for (const int counts : {80, 160, 240, 320}) EXPECT_GT(millivolts(counts), -65.0);
    // Far below rest the gates are shut and Ohm's law holds: V = -54.4 mV - 400 pA / 6 nS.
    EXPECT_NEAR(millivolts(-3200), -54.4 - 400 / 6.0, 0.5);
    EXPECT_NEAR(millivolts(-32768), -54.4 - 4096 / 6.0, 0.05);
    // Jumps between the ends of the range pass through the fastest rates and must not explode.
    Samples ends(4000, 0x7FFF);
    std::fill(ends.begin() + 1000, ends.begin() + 3000, uint16_t{0x8000});
    const Samples input = Play({0xC000}, 100, ends);
    EXPECT_NEAR(int16_t(input[2999]) / 32.0, -54.4 - 4096 / 6.0, 0.05);
    EXPECT_NEAR(int16_t(input[3999]), int16_t(input[0]), 32);
}

}  // namespace
