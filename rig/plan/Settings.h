// A player's settings out of a protocol: objects flattened, each with the line that it stands in.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "Player.h"
#include "document/Document.h"
#include "protocol/Amounts.h"

namespace corvantis::rig {

struct Setting {
    Node node;
    std::string name;  // its places joined by dots
    std::string text;  // as written
    double number = 0;
};

using Settings = std::vector<Setting>;

// Of an object of settings; none of a node without a value.
Settings SettingsOf(const Node& object, const Names& names);

// As a player takes them; as long as the settings stay.
std::vector<PlayerSetting> PlayerSettings(const Settings& settings);

// Throws a Failure for a setting that the player does not know, or a value that it does not take.
void CheckSettings(const Settings& settings, std::span<const PlayerSettingInfo> known);

}  // namespace corvantis::rig
