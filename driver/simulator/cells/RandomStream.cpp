// The generator and its normal and binomial deviates.
#include "simulator/cells/RandomStream.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <numbers>

namespace itc18 {
namespace {

// ln k!, by products and from 16 on by Stirling's series, whose first term left out is 2e-12 there.
double LogFactorial(int64_t k) {
    if (k < 16) {
        double product = 1;
        for (int64_t factor = 2; factor <= k; ++factor) product *= static_cast<double>(factor);
        return std::log(product);
    }
    const auto x = static_cast<double>(k);
    const double inverse = 1 / x, square = inverse * inverse;
    return (x + 0.5) * std::log(x) - x + 0.5 * std::log(2 * std::numbers::pi) +
           inverse * (1.0 / 12 - square * (1.0 / 360 - square / 1260));
}

double LogProbability(int64_t k, int64_t count, double probability) {
    if (k == 0) return static_cast<double>(count) * std::log1p(-probability);
    return LogFactorial(count) - LogFactorial(k) - LogFactorial(count - k) +
           static_cast<double>(k) * std::log(probability) +
           static_cast<double>(count - k) * std::log1p(-probability);
}

// What is left of `uniform` is taken from by the probabilities of more and more distant numbers.
// The last 1e-18 of them, which roundings may leave over, go to the first.
int64_t InvertFrom(int64_t first, int64_t count, double probability, double uniform) {
    const double odds = probability / (1 - probability);
    double below = std::exp(LogProbability(first, count, probability));
    double above = below;
    int64_t low = first, high = first;
    uniform -= below;
    while (uniform > 0 && std::max(below, above) > 1e-18) {
        above *= high < count
                     ? odds * static_cast<double>(count - high) / static_cast<double>(high + 1)
                     : 0;
        if (++high <= count && (uniform -= above) <= 0) return high;
        below *=
            low > 0 ? static_cast<double>(low) / (odds * static_cast<double>(count - low + 1)) : 0;
        if (--low >= 0 && (uniform -= below) <= 0) return low;
    }
    return first;
}

}  // namespace

uint64_t SplitMix(uint64_t& state) {
    uint64_t mixed = state += 0x9E3779B97F4A7C15;
    mixed = (mixed ^ (mixed >> 30)) * 0xBF58476D1CE4E5B9;
    mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EB;
    return mixed ^ (mixed >> 31);
}

RandomStream::RandomStream(uint64_t seed, uint64_t number) : state{} {
    uint64_t mixing = number;
    mixing = seed ^ SplitMix(mixing);
    for (uint64_t& word : state) word = SplitMix(mixing);
}

uint64_t RandomStream::Next() {
    const uint64_t result = std::rotl(state[0] + state[3], 23) + state[0];
    const uint64_t shifted = state[1] << 17;
    state[2] ^= state[0];
    state[3] ^= state[1];
    state[1] ^= state[2];
    state[0] ^= state[3];
    state[2] ^= shifted;
    state[3] = std::rotl(state[3], 45);
    return result;
}

double RandomStream::Uniform() { return (static_cast<double>(Next() >> 12) + 0.5) * 0x1p-52; }

double RandomStream::Normal() {
    hasSpare = !hasSpare;
    if (!hasSpare) return spare;
    double x = 0, y = 0, square = 0;
    do {
        x = 2 * Uniform() - 1;
        y = 2 * Uniform() - 1;
        square = x * x + y * y;
    } while (square >= 1);
    const double factor = std::sqrt(-2 * std::log(square) / square);
    spare = y * factor;
    return x * factor;
}

int64_t RandomStream::Binomial(int64_t count, double probability) {
    if (count <= 0 || probability <= 0) return 0;
    if (probability >= 1) return count;
    if (probability > 0.5) return count - Binomial(count, 1 - probability);
    const double mean = static_cast<double>(count) * probability;
    // From 0 it takes as many terms as happen, but the first one takes no factorials.
    const auto first = mean < 16 ? 0 : static_cast<int64_t>(mean);
    return InvertFrom(first, count, probability, Uniform());
}

}  // namespace itc18
