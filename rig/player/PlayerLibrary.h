// The library of a player: found by name, and held against what it has to offer.
#pragma once

#include <optional>
#include <span>
#include <string>

#include "Player.h"
#include "player/SharedLibrary.h"

namespace corvantis::rig {

class PlayerLibrary {
  public:
    // Finds and loads a player.
    //   name     a path, taken as it is; or a plain name, whose file, as LibraryFileName has it,
    //   lies
    //            beside the program or where the system's loader looks
    //   problem  why there is nothing, a sentence that names the library
    static std::optional<PlayerLibrary> Load(const std::string& name, std::string& problem);

    const PlayerCalls& Calls() const { return *calls; }
    // What it can be told, as it says itself; each setting has its texts.
    std::span<const PlayerSettingInfo> Settings() const { return settings; }

  private:
    PlayerLibrary(SharedLibrary loaded, const PlayerCalls& offered,
                  std::span<const PlayerSettingInfo> known)
        : library(std::move(loaded)), calls(&offered), settings(known) {}

    SharedLibrary library;
    const PlayerCalls* calls;
    std::span<const PlayerSettingInfo> settings;
};

}  // namespace corvantis::rig
