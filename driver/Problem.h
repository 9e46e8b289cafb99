// How players of C++ say what is wrong.
#pragma once

#include <algorithm>
#include <cstdint>
#include <string_view>

#include "Player.h"

namespace player {

// Gives a result its sentence, which is cut where the room ends.
//   problem  may be null
//   result   one of PlayerResult, returned
//   setting  its number among those given, or -1
inline int32_t Say(PlayerProblem* problem, int32_t result, std::string_view text,
                   int32_t setting = -1) {
    if (problem == nullptr) return result;
    problem->setting = setting;
    text = text.substr(0, sizeof problem->text - 1);
    *std::copy(text.begin(), text.end(), problem->text) = '\0';
    return result;
}

inline int32_t Refuse(PlayerProblem* problem, std::string_view text) {
    return Say(problem, Player_Refused, text);
}

}  // namespace player
