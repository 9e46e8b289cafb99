// Epochs played through a player: whole ones, and everything that ends one before.
#include "acquisition/EpochPlay.h"

#include <gtest/gtest.h>

#include <optional>

#include "SimulatedRig.h"

namespace {

using namespace corvantis::rig;
using namespace corvantis_test;

const Words kEchoes = {0x0880, 0xE400};  // input and output 1, and the digital ones

class EpochPlayTest : public testing::Test {
  protected:
    EpochPlayTest() {
        std::string problem;
        library = PlayerLibrary::Load(SIMULATED_PLAYER, problem);
        EXPECT_TRUE(library) << problem;
        player.emplace(*library);
    }

    void Open(const std::vector<PlayerSetting>& settings) {
        const Answer answer = player->Open(rig.device, settings);
        ASSERT_TRUE(answer) << answer.text;
    }

    EpochResult Play(int32_t points, int32_t trigger = 0) {
        stimulus = rig.Ramp(points);
        response.assign(stimulus.size(), 0xFFFF);
        rig.Prepare();
        return PlayEpoch(*player, rig.Epoch(stimulus, trigger), stimulus, response, hooks, time);
    }

    SimulatedRig rig{kEchoes, 10};
    std::optional<PlayerLibrary> library;
    std::optional<OpenPlayer> player;
    EpochHooks hooks;
    EpochTime time;
    Samples stimulus, response;
};

TEST_F(EpochPlayTest, EchoesAWholeEpoch) {
    Open({});
    const EpochResult result = Play(1000);
    EXPECT_EQ(result.end, EpochEnd::Complete) << result.message;
    EXPECT_EQ(response, stimulus);
}

}  // namespace
