// What can be set of the interface itself: its pace, its buffers and its faults.
#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "Player.h"
#include "simulator/SettingTable.h"

namespace itc18 {

enum class Pacing : int32_t { kFast, kRealTime };

// In the order of ITC18Simulator_Call, from that of `change` on.
enum class FailingCall : int32_t { kNone, kChange, kStart, kRoom, kWrite, kRead, kStop, kWait };

// As they stand here: an interface without delay, limits and faults, faster than real time. The
// units are those of the table.
struct InterfaceSettings {
    Pacing pacing = Pacing::kFast;
    int64_t pipeline = 0;
    bool skew = false;
    int64_t outputBuffer = 262144;
    int64_t inputBuffer = 262144;
    int64_t mostMoved = 0;
    int64_t seed = 0;
    double triggerAfter = 0;
    FailingCall failCall = FailingCall::kNone;
    int32_t failAt = 1;
    double stallAt = -1;
    double stallFor = -1;
    double loseAt = -1;
};

std::span<const PlayerSettingInfo> InterfaceSettingInfo();

// As the function of the same name for a preparation's settings.
Assignment Assign(InterfaceSettings& settings, const PlayerSetting& setting, std::string& problem);

}  // namespace itc18
