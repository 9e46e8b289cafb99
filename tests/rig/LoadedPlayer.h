// A player of a library, loaded and opened or the test has failed.
#pragma once

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "acquisition/EpochPlay.h"

namespace corvantis_test {

inline std::optional<corvantis::rig::PlayerLibrary> Loaded(const std::string& name) {
    std::string problem;
    auto library = corvantis::rig::PlayerLibrary::Load(name, problem);
    EXPECT_TRUE(library) << problem;
    return library;
}

class LoadedPlayer {
  public:
    explicit LoadedPlayer(const std::string& name) : library(Loaded(name)), player(*library) {}

    void Open(void* device, const std::vector<PlayerSetting>& settings) {
        const corvantis::rig::Answer answer = player.Open(device, settings);
        EXPECT_TRUE(answer) << answer.text;
    }

    std::optional<corvantis::rig::PlayerLibrary> library;
    corvantis::rig::OpenPlayer player;
};

}  // namespace corvantis_test
