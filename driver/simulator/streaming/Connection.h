// Connecting a preparation to an interface, and changing its settings.
#pragma once

#include <cstdint>

#include "simulator/Device.h"
#include "simulator/streaming/Bench.h"

namespace itc18 {

// Connects anew, with every setting as usual but those that are given. PlayerResult; after anything
// but success all is as before.
int32_t Connect(Device& device, const PlayerSetting* settings, int32_t count,
                PlayerProblem* problem);

// Changes the settings that are given, of which all are taken or none. PlayerResult.
int32_t Change(Bench& bench, const PlayerSetting* settings, int32_t count, PlayerProblem* problem);

}  // namespace itc18
