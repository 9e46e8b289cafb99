// Draws where the channels of each state go.
#include "simulator/cells/ChannelNoise.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace itc18 {
namespace {

using Chances = std::array<double, ChannelNoise::kMostParticles + 1>;

// One more particle, open with this probability, beside `count` whose numbers of open ones are
// known.
void AddParticle(Chances& chances, int count, double open) {
    for (int k = count + 1; k > 0; --k) {
        const auto i = static_cast<size_t>(k);
        chances[i] = chances[i] * (1 - open) + chances[i - 1] * open;
    }
    chances[0] *= 1 - open;
}

Chances OpenParticles(int open, int particles, ParticleStep step) {
    Chances chances{1};
    for (int particle = 0; particle < particles; ++particle)
        AddParticle(chances, particle, particle < open ? step.fromOpen : step.fromClosed);
    return chances;
}

// Spreads a number of channels over the numbers of open particles, the likeliest, `first`, first:
// so few are left for the others that these cost next to nothing.
template <class Row>
void Spread(RandomStream& stream, int64_t count, const Chances& chances, int particles, int first,
            Row& into) {
    double left = 1;
    const auto take = [&](int place) {
        const auto i = static_cast<size_t>(place);
        const double part = left > 0 ? std::clamp(chances[i] / left, 0.0, 1.0) : 1;
        const int64_t taken = stream.Binomial(count, part);
        into[i] += taken;
        count -= taken;
        left -= chances[i];
    };
    take(first);
    for (int distance = 1; distance <= particles && count > 0; ++distance) {
        if (first + distance <= particles) take(first + distance);
        if (first - distance >= 0) take(first - distance);
    }
    into[static_cast<size_t>(first)] += count;  // what roundings left over
}

}  // namespace

void ChannelNoise::Settle(RandomStream& stream, double activation, double inactivation) {
    const int64_t open = rows == 2 ? stream.Binomial(channels, inactivation) : 0;
    const Chances chances = OpenParticles(0, particles, {activation, activation});
    const int first = static_cast<int>(std::lround(activation * particles));
    states = {};
    Spread(stream, channels - open, chances, particles, first, states[0]);
    Spread(stream, open, chances, particles, first, states[1]);
}

void ChannelNoise::Advance(RandomStream& stream, ParticleStep activation,
                           ParticleStep inactivation) {
    if (particles > 0) MoveActivation(stream, activation);
    if (rows == 2) MoveInactivation(stream, inactivation);
}

void ChannelNoise::MoveActivation(RandomStream& stream, ParticleStep step) {
    std::array<Row, 2> moved{};
    for (int open = 0; open <= particles; ++open) {
        const Chances chances = OpenParticles(open, particles, step);
        for (size_t row = 0; row < 2; ++row)
            Spread(stream, states[row][static_cast<size_t>(open)], chances, particles, open,
                   moved[row]);
    }
    states = moved;
}

void ChannelNoise::MoveInactivation(RandomStream& stream, ParticleStep step) {
    for (size_t i = 0; i <= static_cast<size_t>(particles); ++i) {
        const int64_t closing = stream.Binomial(states[1][i], 1 - step.fromOpen);
        const int64_t opening = stream.Binomial(states[0][i], step.fromClosed);
        states[1][i] += opening - closing;
        states[0][i] += closing - opening;
    }
}

double ChannelNoise::OpenFraction() const {
    const int64_t open = states[static_cast<size_t>(rows - 1)][static_cast<size_t>(particles)];
    return static_cast<double>(open) / static_cast<double>(channels);
}

}  // namespace itc18
