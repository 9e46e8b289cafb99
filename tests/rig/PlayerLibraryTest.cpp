// Players' libraries: which are found and taken, and which are not; and answers that cannot be.
#include "player/PlayerLibrary.h"

#include <gtest/gtest.h>

#include <set>

#include "LoadedPlayer.h"
#include "SimulatedRig.h"

namespace {

using namespace corvantis::rig;
using namespace corvantis_test;

TEST(PlayerLibraryTest, SaysWhatIsWrongWithALibrary) {
    const struct {
        const char *name, *says;
    } cases[] = {
        {"CorvantisNoSuchPlayer", "player 'CorvantisNoSuchPlayer' cannot be loaded: "},
        {"./no/such/player", "player './no/such/player' cannot be loaded: "},
        {ITC18_FILE, "is no player: it exports no table of calls, CorvantisPlayer"},
        {UnfitPlayer1_FILE, "is a player of version 2, not 1"},
        {UnfitPlayer2_FILE, "a call in its table is null"},
        {UnfitPlayer3_FILE, "one of its settings lacks a text"},
    };
    for (const auto& [name, says] : cases) {
        std::string problem;
        EXPECT_FALSE(PlayerLibrary::Load(name, problem));
        EXPECT_NE(problem.find(says), problem.npos) << problem;
    }
}

TEST(PlayerLibraryTest, FindsAPlayerBesideTheProgramByItsName) {
    EXPECT_TRUE(Loaded("TestedEchoPlayer"));
}

TEST(PlayerLibraryTest, DoesNotTrustAnswers) {
    SimulatedRig rig({0xC000}, 10);
    LoadedPlayer lying(UnfitPlayer4_FILE);
    lying.Open(rig.device, {});
    OpenPlayer& player = lying.player;
    Samples samples(3);
    int32_t untouched = 7;
    EXPECT_EQ(player.Start(rig.Epoch(samples), untouched).result, Player_Refused);
    EXPECT_EQ(player.Write(samples, untouched).text,
              "the player says that it has written 4 of 3 samples");
    EXPECT_EQ(player.Read(samples, untouched).result, Player_Refused);
    EXPECT_EQ(untouched, 7);
    EXPECT_EQ(player.Stop().text, "the player does not say why it cannot stop");
    const Answer unterminated = player.Change({});
    EXPECT_EQ(unterminated.result, Player_Refused) << "an unknown result";
    EXPECT_EQ(unterminated.text, std::string(Player_TextLength, 'x'));
    player.Close();
    EXPECT_EQ(player.Wait(0, nullptr).text, "the player is not open");
}

TEST(PlayerLibraryTest, SettingsAreTakenAsTheTableHasThem) {
    SimulatedRig rig({0xC000}, 10);
    LoadedPlayer simulated(CorvantisSimulatedPlayer_FILE);
    std::vector<PlayerSetting> usual;
    std::set<std::string> names;
    for (const PlayerSettingInfo& info : simulated.library->Settings()) {
        names.insert(info.name);
        usual.push_back({info.name, info.unless, std::strtod(info.unless, nullptr)});
    }
    EXPECT_EQ(names.size(), usual.size());
    EXPECT_TRUE(names.contains("cell.model") && names.contains("interface.pipeline"));
    simulated.Open(rig.device, usual);
    usual.push_back(Number("cell.legs", 4));
    EXPECT_EQ(simulated.player.Change(usual).setting, static_cast<int32_t>(names.size()));
}

}  // namespace
