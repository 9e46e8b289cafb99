// The calls of driver and streams in any order: none moves more than it was asked to, gives a
// result that there is not, or touches what is not its own.
#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <random>

#include "SimulatedRig.h"

namespace {

using namespace corvantis_test;

class AnyOrder {
  public:
    explicit AnyOrder(uint32_t seed) : chance(seed) { ITC18Simulator_AdvanceClock(0); }

    void Call() {
        const size_t which = Draw(static_cast<uint32_t>(calls.size()));
        const int32_t result = calls[which]();
        EXPECT_TRUE(result >= Player_Success && result <= Player_OutOfMemory) << "call " << which;
        successes[which] += result == Player_Success;
    }

    // That every call has been let through at times.
    void ExpectSuccesses() const {
        for (size_t which = 0; which < calls.size(); ++which)
            EXPECT_GT(successes[which], 5) << "call " << which;
    }

  private:
    uint32_t Draw(uint32_t below) { return static_cast<uint32_t>(chance() % below); }

    std::vector<PlayerSetting> Settings() {
        return {Number("interface.pipeline", Draw(66)),
                Number("interface.outputBuffer", 3 + Draw(60)),
                Number("interface.inputBuffer", 3 + Draw(60)),
                Number("interface.mostMoved", Draw(20)),
                Number("interface.seed", Draw(3)),
                Number("interface.stallAt", Draw(5) - 1.0),
                Number("interface.stallFor", Draw(3)),
                Number("interface.loseAt", Draw(8) == 0 ? 5 : -1),
                Number("interface.triggerAfter", Draw(3) - 1.0),
                Text("interface.skew", Draw(2) ? "true" : "false"),
                Text("interface.pacing", Draw(2) ? "fast" : "realTime"),
                Text("interface.failCall", Draw(2) ? "none" : "read"),
                Text("cell.model", Draw(2) ? "passive" : "adexTonic")};
    }
    int32_t Set() {
        static const Words words = {0x0000, 0x0880, 0x1100, 0xE400, 0xC880};
        const auto length = static_cast<int32_t>(1 + Draw(4));
        sequence.assign(words.end() - length, words.end());
        return ITC18_SetSequence(device, length, sequence.data()) != 0 ||
               ITC18_SetSamplingInterval(device, 20, 0) != 0 ||
               ITC18_InitializeAcquisition(device) != 0;
    }
    int32_t Start() {
        PlayerEpoch epoch{};
        epoch.entries = static_cast<int32_t>(sequence.size());
        epoch.sequence = sequence.data();
        epoch.interval = 20 * epoch.entries;
        epoch.points = static_cast<int32_t>(Draw(static_cast<uint32_t>(conductances.size())));
        epoch.trigger = Draw(4) == 0;
        epoch.latency = static_cast<int32_t>(Draw(20)) - 1;
        epoch.excitatory = Draw(2) ? conductances.data() : nullptr;
        epoch.inhibitory = epoch.excitatory;
        int32_t delay = 0;
        ITC18_InitializeAcquisition(device);
        return ITC18Simulator_Start(device, &epoch, &delay, &problem);
    }
    int32_t Moved(int32_t result, int32_t count, int32_t moved) {
        EXPECT_TRUE(result != Player_Success || (moved >= 0 && moved <= count));
        return result;
    }

    std::mt19937 chance;
    std::array<uint8_t, 512> memory{};
    void* const device = memory.data();
    PlayerProblem problem{};
    Words sequence = {0xC000};
    std::vector<float> conductances = std::vector<float>(100, 1);
    Samples samples = Samples(100, 50);

    const std::vector<std::function<int32_t()>> calls = {
        [this] { return ITC18_Open(device, 0) | ITC18_Initialize(device, 0) | Set(); },
        [this] { return int32_t{Draw(40) != 0 || ITC18_Close(device) != 0}; },
        [this] { return Set(); },
        [this] {
            const auto settings = Settings();
            return ITC18Simulator_Connect(device, settings.data(), 13, &problem);
        },
        [this] {
            const auto settings = Settings();
            return ITC18Simulator_Change(device, settings.data(), 13, nullptr);
        },
        [this] { return Start(); },
        [this] { return Start(); },
        [this] {
            const auto count = static_cast<int32_t>(Draw(100));
            int32_t moved = 0;
            const auto* const from = samples.data() + samples.size() - count;
            const int32_t result = ITC18Simulator_Write(device, from, count, &moved, &problem);
            return Moved(result, count, moved);
        },
        [this] {
            const auto count = static_cast<int32_t>(Draw(100));
            int32_t moved = 0;
            auto* const to = samples.data() + samples.size() - count;
            const int32_t result = ITC18Simulator_Read(device, to, count, &moved, &problem);
            return Moved(result, count, moved);
        },
        [this] {
            ITC18Simulator_Room room;
            return ITC18Simulator_GetRoom(device, &room, nullptr);
        },
        [this] { return ITC18Simulator_Stop(device, nullptr); },
        [this] { return ITC18Simulator_Wait(device, Draw(3000), samples.data(), &problem); },
        [this] { return ITC18Simulator_Trigger(device); },
        [this] {
            ITC18Simulator_AdvanceClock(Draw(2000));
            return 0;
        },
    };
    std::array<int, 14> successes{};
};

TEST(CallOrderTest, AnyOrderIsAnsweredWithoutHarm) {
    ITC18Simulator_Reset();
    AnyOrder calls(20);
    for (int call = 0; call < 20000; ++call) calls.Call();
    calls.ExpectSuccesses();
    ITC18Simulator_Reset();
}

}  // namespace
