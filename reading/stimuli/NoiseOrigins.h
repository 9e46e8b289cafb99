// How drawing changes what is known of the generators.
#pragma once

#include <span>

#include "stimuli/NoiseHistory.h"

namespace corvantis::reading {

// The state word that a seed becomes; 0 or below restarts the generator.
inline int32_t StateWord(int32_t seed) {
    return static_cast<int32_t>(0U - static_cast<uint32_t>(seed));
}
inline bool Restarts(const Draws& draws) { return StateWord(draws.seed) <= 0; }
inline bool AreNormal(const Draws& draws) { return draws.deviates == Deviates::kNormal; }
inline bool AreOld(const Draws& draws) { return draws.deviates == Deviates::kOldNormal; }
inline bool AreUniform(const Draws& draws) { return draws.deviates == Deviates::kUniform; }

// What this noise goes on behind, as far as that is in doubt; of several the highest.
Origin DependenceOf(const Draws& draws, const NoiseOrigins& before);

// Behind the noise of an epoch, which has a place in the history.
NoiseOrigins OriginsBehind(const NoiseEpoch& epoch, size_t place);
// Behind one noise of it.
void Follow(const Draws& draws, int64_t epoch, size_t place, NoiseOrigins& origins);

// Draws the numbers.
void Draw(const Draws& draws, NoiseGenerators& generators);

}  // namespace corvantis::reading
