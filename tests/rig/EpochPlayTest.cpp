// Epochs played through a player: whole ones, and everything that ends one before.
#include "acquisition/EpochPlay.h"

#include <gtest/gtest.h>

#include <map>

#include "LoadedPlayer.h"
#include "SimulatedRig.h"

namespace {

using namespace corvantis::rig;
using namespace corvantis_test;

const Words kEchoes = {0x0880, 0xE400};  // input and output 1, and the digital ones

class EpochPlayTest : public testing::Test {
  protected:
    EpochPlayTest() {
        // Whoever sleeps moves the interface's clock, and nothing else does.
        ITC18Simulator_AdvanceClock(0);
        time.now = [this] { return clock; };
        time.sleep = [this](double seconds) {
            clock += seconds;
            ITC18Simulator_AdvanceClock(static_cast<int64_t>(seconds * 1e6));
        };
    }

    void Open(const std::vector<PlayerSetting>& settings) { simulated.Open(rig.device, settings); }

    EpochResult Play(int32_t points, int32_t trigger = 0) {
        stimulus = rig.Ramp(points);
        response.assign(stimulus.size(), 0xFFFF);
        rig.Prepare();
        return PlayEpoch(simulated.player, rig.Epoch(stimulus, trigger), stimulus, response, hooks,
                         time);
    }

    void ExpectWhole(int32_t points) {
        const EpochResult result = Play(points);
        EXPECT_EQ(result.end, EpochEnd::Complete) << result.message;
        EXPECT_EQ(result.acquired, stimulus.size());
        EXPECT_EQ(response, stimulus);
    }

    SimulatedRig rig{kEchoes, 10};
    LoadedPlayer simulated{CorvantisSimulatedPlayer_FILE};
    EpochHooks hooks;
    EpochTime time;
    double clock = 100;
    Samples stimulus, response;
};

TEST_F(EpochPlayTest, PlaysWholeEpochsHoweverTheyAreMoved) {
    const std::vector<PlayerSetting> ways[] = {
        {},
        {Number("interface.pipeline", 5)},
        {Number("interface.pipeline", 5), Text("interface.skew", "true")},
        {Number("interface.pipeline", 64), Number("interface.mostMoved", 1)},
        {Number("interface.pipeline", 3), Number("interface.mostMoved", 9),
         Number("interface.seed", 3), Number("interface.outputBuffer", 4),
         Number("interface.inputBuffer", 4)},
        {Text("interface.pacing", "realTime"), Number("interface.outputBuffer", 500),
         Number("interface.inputBuffer", 500), Number("interface.pipeline", 5)},
    };
    for (const auto& settings : ways) {
        Open(settings);
        ExpectWhole(1000);
        ExpectWhole(1);
    }
}

TEST_F(EpochPlayTest, EndsWithAReasonAndGoesOnUnlessLost) {
    const struct {
        EpochEnd end;
        std::vector<PlayerSetting> settings;
    } cases[] = {
        {EpochEnd::Overflow, {Number("interface.inputBuffer", 100)}},
        {EpochEnd::Underrun, {Number("interface.outputBuffer", 100)}},
        {EpochEnd::TimedOut, {Number("interface.stallAt", 5)}},
        {EpochEnd::Lost, {Number("interface.loseAt", 5)}},
    };
    for (auto [end, settings] : cases) {
        settings.push_back(Text("interface.pacing", "realTime"));
        Open(settings);
        time.pause = 2e-3;  // 100 pairs of samples, more than the small buffers hold
        const double begin = clock;
        const EpochResult result = Play(1000);
        EXPECT_EQ(result.end, end) << result.message;
        EXPECT_FALSE(result.message.empty());
        EXPECT_LT(result.acquired, response.size());
        EXPECT_TRUE(std::equal(response.begin(),
                               response.begin() + static_cast<int64_t>(result.acquired),
                               stimulus.begin()));
        EXPECT_EQ(result.lost, end == EpochEnd::Lost);
        EXPECT_LT(clock - begin, 5.1) << "20 ms and a margin of 5 s";
        if (result.lost) break;
        time.pause = 1e-4;
        Open({Text("interface.pacing", "realTime")});
        ExpectWhole(1000);
    }
}

TEST_F(EpochPlayTest, OutlastsAStall) {
    Open({Number("interface.stallAt", 5), Number("interface.stallFor", 4000)});
    ExpectWhole(1000);
}

// Each call of each kind, until none is left to fail. An epoch is whole before it is stopped.
TEST_F(EpochPlayTest, SurvivesEveryFailingCall) {
    const std::map<std::string, int32_t> fewestCalls = {
        {"start", 1}, {"write", 7}, {"read", 7}, {"stop", 1}};
    for (const auto& [call, fewest] : fewestCalls) {
        for (int32_t nth = 1;; ++nth) {
            Open({Text("interface.failCall", call.c_str()), Number("interface.failAt", nth),
                  Number("interface.mostMoved", 13)});
            const EpochResult result = Play(40);
            const bool failed = !result.message.empty();
            EXPECT_EQ(result.end == EpochEnd::Complete, !failed || call == "stop");
            EXPECT_TRUE(failed || nth > fewest);
            if (!failed) break;
            EXPECT_EQ(ITC18Simulator_Stop(rig.device, nullptr), Player_Success);
            ExpectWhole(40);
        }
    }
}

TEST_F(EpochPlayTest, WaitsForItsTriggerAsLongAsItTakes) {
    Open({Number("interface.triggerAfter", -1)});
    int32_t asked = 0;
    hooks.stopAsked = [&] {
        if (++asked == 20000) ITC18Simulator_Trigger(rig.device);
        return false;
    };
    EXPECT_EQ(Play(1000, 1).end, EpochEnd::Complete);
    EXPECT_GT(clock, 119) << "20 s";
}

TEST_F(EpochPlayTest, StopsWhenAskedAndShowsWhatHasCome) {
    Open({Number("interface.mostMoved", 100), Number("interface.pipeline", 5)});
    size_t seen = 0;
    hooks.progress = [&](std::span<const uint16_t> acquired) {
        EXPECT_GT(acquired.size(), seen);
        EXPECT_EQ(acquired.data(), response.data());
        seen = acquired.size();
    };
    hooks.stopAsked = [&] { return seen >= 700; };
    const EpochResult result = Play(1000);
    EXPECT_EQ(result.end, EpochEnd::Stopped);
    EXPECT_EQ(result.acquired, seen);
    hooks.stopAsked = []() -> bool { throw std::bad_function_call(); };
    EXPECT_THROW(Play(1000), std::bad_function_call);
    hooks.stopAsked = nullptr;
    seen = 0;
    ExpectWhole(1000);
    EXPECT_EQ(seen, 2000U);
}

TEST_F(EpochPlayTest, RefusesSamplesThatDoNotFitTheEpoch) {
    Open({});
    Samples samples(10);
    PlayerEpoch epoch = rig.Epoch(samples);
    EXPECT_EQ(PlayEpoch(simulated.player, epoch, samples, std::span(samples).first(9)).end,
              EpochEnd::Malformed);
    epoch.entries = 0;
    EXPECT_EQ(PlayEpoch(simulated.player, epoch, samples, samples).end, EpochEnd::Malformed);
}

TEST_F(EpochPlayTest, TheExampleOfAPlayerEchoes) {
    LoadedPlayer echo(TestedEchoPlayer_FILE);
    echo.Open(rig.device, {});
    for (const int32_t points : {1, 100000}) {
        stimulus = rig.Ramp(points);
        response.assign(stimulus.size(), 0xFFFF);
        EXPECT_EQ(PlayEpoch(echo.player, rig.Epoch(stimulus), stimulus, response).end,
                  EpochEnd::Complete);
        EXPECT_EQ(response, stimulus);
    }
}

// 200 MOhm to -70 mV and 5 nS to 0 mV: halfway. A conductance of 0 leaves the cell at rest.
TEST(DynamicClampTest, ConductancesPullThePotentialDuringTheEpochAlone) {
    for (const char* skew : {"false", "true"}) {
        SimulatedRig rig({0x0000, 0xE400}, 25);
        LoadedPlayer simulated(CorvantisSimulatedPlayer_FILE);
        simulated.Open(rig.device, {Text("cell.model", "passive"), Number("cell.capacitance", 20),
                                    Text("interface.skew", skew), Number("interface.pipeline", 5)});
        const std::vector<float> excitatory(2000, 5), none(2000, 0);
        const Samples stimulus(4000, 0);
        Samples response(4000);
        for (const auto* conductances : {&none, &excitatory, &none}) {
            rig.Prepare();
            PlayerEpoch epoch = rig.Epoch(stimulus);
            epoch.latency = 6;
            epoch.excitatory = conductances->data();
            epoch.inhibitory = none.data();
            const EpochResult result = PlayEpoch(simulated.player, epoch, stimulus, response);
            EXPECT_EQ(result.end, EpochEnd::Complete) << result.message;
            EXPECT_NEAR(int16_t(response[3998]) / 32.0, conductances == &none ? -70 : -35, 0.04);
        }
    }
}

}  // namespace
