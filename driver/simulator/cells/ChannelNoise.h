// The channels of one current as a number of them in each state, moved by chance.
//
// A channel has 0 to 4 activation particles and perhaps an inactivation particle, each open or
// closed by itself, as the products of gates say; its states are how many are open. Over a step at
// a potential that stands still, what becomes of each particle is known exactly, so the numbers are
// drawn exactly too: no step is too long for a fast rate.
// E. Skaugen and L. Walloe, "Firing behaviour in a stochastic nerve membrane model based upon the
// Hodgkin-Huxley equations", Acta Physiol. Scand. 107:343-363 (1979).
#pragma once

#include <array>
#include <cstdint>

#include "simulator/cells/RandomStream.h"

namespace itc18 {

// What a particle does over one step: the probability that it is open at the end of it.
struct ParticleStep {
    double fromOpen, fromClosed;
};

class ChannelNoise {
  public:
    static constexpr int kMostParticles = 4;

    ChannelNoise() = default;  // no channels
    ChannelNoise(int64_t count, int activationParticles, bool inactivates)
        : channels(count), particles(activationParticles), rows(inactivates ? 2 : 1) {}

    // Draws every channel anew, each particle open with its probability.
    void Settle(RandomStream& stream, double activation, double inactivation);

    void Advance(RandomStream& stream, ParticleStep activation, ParticleStep inactivation);

    double OpenFraction() const;

  private:
    using Row = std::array<int64_t, kMostParticles + 1>;  // by open activation particles

    void MoveActivation(RandomStream& stream, ParticleStep step);
    void MoveInactivation(RandomStream& stream, ParticleStep step);

    int64_t channels = 0;
    int particles = 0;
    int rows = 1;  // without and, if there is one, with the inactivation particle open
    std::array<Row, 2> states{};
};

}  // namespace itc18
