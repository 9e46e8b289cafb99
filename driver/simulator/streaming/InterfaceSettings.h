// What can be set of the interface itself: its pace, its buffers and its faults.
#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "Player.h"
#include "simulator/cells/PreparationSettings.h"

namespace itc18 {

enum class Pacing : int32_t { kFast, kRealTime };

// Of choices the number; the units are those of the table.
struct InterfaceSettings {
    double pacing = 0;
    double pipeline = 0;
    double skew = 0;
    double outputBuffer = 0;
    double inputBuffer = 0;
    double mostMoved = 0;
    double seed = 0;
    double triggerAfter = 0;
    double failCall = 0;
    double failAt = 0;
    double stallAt = 0;
    double stallFor = 0;
    double loseAt = 0;

    // Every setting as the table's `unless` says.
    static InterfaceSettings Usual();

    Pacing Pace() const { return static_cast<Pacing>(pacing); }
};

std::span<const PlayerSettingInfo> InterfaceSettingInfo();

// As the function of the same name for a preparation's settings.
Assignment Assign(InterfaceSettings& settings, const PlayerSetting& setting, std::string& problem);

}  // namespace itc18
