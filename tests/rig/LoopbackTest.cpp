// The loop-back: an interface in another process, which may die or fall silent.
#include <gtest/gtest.h>

#include "LoadedPlayer.h"
#include "SimulatedRig.h"

namespace {

using namespace corvantis::rig;
using namespace corvantis_test;

class LoopbackTest : public testing::Test {
  protected:
    EpochResult Play(const EpochHooks& hooks = {}, double margin = 5) {
        EpochTime time;
        time.margin = margin;
        stimulus = rig.Ramp(60000);
        response.assign(stimulus.size(), 0xFFFF);
        PlayerEpoch epoch = rig.Epoch(stimulus);
        epoch.interval = 2;  // an epoch of 0.12 s
        return PlayEpoch(loopback.player, epoch, stimulus, response, hooks, time);
    }
    void ExpectWhole() {
        const EpochResult result = Play();
        EXPECT_EQ(result.end, EpochEnd::Complete) << result.message;
        EXPECT_EQ(response, stimulus);
    }

    SimulatedRig rig{{0x0880, 0xE400}, 10};
    LoadedPlayer loopback{CorvantisLoopbackPlayer_FILE};
    Samples stimulus, response;
};

TEST_F(LoopbackTest, EchoesEpochsWithEachDelay) {
    loopback.Open(rig.device, {});
    for (const double delay : {0, 1, 5, 4096}) {
        const PlayerSetting setting = Number("loopback.delay", delay);
        EXPECT_TRUE(loopback.player.Change({&setting, 1}));
        ExpectWhole();
    }
    EXPECT_TRUE(loopback.player.Wait(1000, nullptr));
}

TEST_F(LoopbackTest, AnEpochAfterAStoppedOneIsItsOwn) {
    loopback.Open(rig.device, {Number("loopback.delay", 5)});
    bool stop = false;
    EpochHooks hooks;
    hooks.progress = [&](std::span<const uint16_t>) { stop = true; };
    hooks.stopAsked = [&] { return stop; };
    EXPECT_EQ(Play(hooks).end, EpochEnd::Stopped);
    ExpectWhole();
}

TEST_F(LoopbackTest, AKilledProgramIsALostInterface) {
    loopback.Open(rig.device, {Number("loopback.dieAfter", 70000)});
    const EpochResult result = Play();
    EXPECT_EQ(result.end, EpochEnd::Lost);
    EXPECT_TRUE(result.lost);
    EXPECT_LE(result.acquired, 70000U);
    EXPECT_EQ(Play().end, EpochEnd::Lost);
    EXPECT_EQ(loopback.player.Wait(1000000, nullptr).result, Player_Lost) << "at once";
    loopback.Open(rig.device, {});
    ExpectWhole();
}

TEST_F(LoopbackTest, ASilentProgramTimesOutAndIsEnded) {
    loopback.Open(rig.device, {Number("loopback.hangAfter", 70000)});
    EXPECT_EQ(Play({}, 0.1).end, EpochEnd::TimedOut);
    loopback.player.Close();
}

TEST_F(LoopbackTest, SaysWhyItCannotBegin) {
    const PlayerSetting missing = Text("loopback.program", "/no/such/program");
    EXPECT_EQ(loopback.player.Open(rig.device, {&missing, 1}).text,
              "/no/such/program: No such file or directory");
    const PlayerSetting bad[] = {Number("loopback.delay", 1), Number("loopback.delay", 4097)};
    EXPECT_EQ(loopback.player.Open(rig.device, bad).setting, 1);
}

}  // namespace
