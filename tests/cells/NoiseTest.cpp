// Chance: the generators, the laws of both kinds of noise, and that a seed decides everything.
#include <cmath>
#include <tuple>
#include <utility>
#include <vector>

#include "cells/Rehearsal.h"
#include "simulator/cells/ChannelNoise.h"
#include "simulator/cells/RandomStream.h"
#include "simulator/cells/SquidAxon.h"
#include "simulator/cells/SynapticNoise.h"

namespace {

struct Moments {
    double count = 0, sum = 0, squares = 0;

    void Add(double value) {
        ++count;
        sum += value;
        squares += value * value;
    }
    double Mean() const { return sum / count; }
    double Variance() const { return squares / count - Mean() * Mean(); }
};

// Limits of this many standard errors fail one seed in two million.
constexpr double kErrors = 5;

// First numbers as the generators' authors' own programs print them.
TEST(NoiseTest, GeneratorsAreThePublishedOnes) {
    uint64_t state = 1234567;
    EXPECT_EQ(itc18::SplitMix(state), 6457827717110365317U);
    EXPECT_EQ(itc18::SplitMix(state), 3203168211198807973U);
    itc18::RandomStream stream({1, 2, 3, 4});
    for (const uint64_t expected :
         {41943041ULL, 58720359ULL, 3588806011781223ULL, 3591011842654386ULL})
        EXPECT_EQ(stream.Next(), expected);
}

TEST(NoiseTest, DeviatesHaveTheirLawsMoments) {
    constexpr int kDraws = 100000;
    itc18::RandomStream stream(1, 0);
    Moments normal, fourth;
    for (int draw = 0; draw < kDraws; ++draw) {
        const double x = stream.Normal();
        normal.Add(x);
        fourth.Add(x * x * x * x);
    }
    EXPECT_NEAR(normal.Mean(), 0, kErrors / std::sqrt(kDraws));
    EXPECT_NEAR(normal.Variance(), 1, kErrors * std::sqrt(2.0 / kDraws));
    EXPECT_NEAR(fourth.Mean(), 3, kErrors * std::sqrt(96.0 / kDraws));
    for (const auto& [count, chance] :
         {std::pair(1, 0.3), {7, 0.02}, {40, 0.5}, {1000, 0.9}, {1000000, 0.004}}) {
        Moments binomial;
        for (int draw = 0; draw < kDraws / 10; ++draw) {
            const int64_t drawn = stream.Binomial(count, chance);
            ASSERT_TRUE(drawn >= 0 && drawn <= count);
            binomial.Add(static_cast<double>(drawn));
        }
        const double variance = count * chance * (1 - chance);
        EXPECT_NEAR(binomial.Mean(), count * chance, kErrors * std::sqrt(variance / (kDraws / 10)));
        // The fourth moment about the mean is 3 variance² + variance (1 - 6 p (1 - p)).
        const double spread = 2 * variance * variance + variance * (1 - 6 * chance * (1 - chance));
        EXPECT_NEAR(binomial.Variance(), variance, kErrors * std::sqrt(spread / (kDraws / 10)));
    }
    EXPECT_EQ(stream.Binomial(5, 0), 0);
    EXPECT_EQ(stream.Binomial(5, 1), 5);
}

// Steps far shorter and far longer than the correlation time have the same law.
TEST(NoiseTest, ASynapsesConductanceHasItsMeanDeviationAndCorrelationAtAnyStep) {
    for (const double step : {0.005, 1.0, 30.0}) {
        itc18::SynapticNoise noise({30, 3, 2.728, 0});
        itc18::RandomStream stream(7, 0);
        noise.Settle(stream);
        constexpr int kSteps = 200000;
        const double correlation = std::exp(-step / 2.728);
        Moments conductance, products;
        double before = noise.Conductance();
        for (int done = 0; done < kSteps; ++done) {
            noise.Advance(stream, step);
            products.Add((before - 30) * (noise.Conductance() - 30) / 9);
            conductance.Add(before = noise.Conductance());
        }
        const double independent = kSteps * (1 - correlation) / (1 + correlation);
        EXPECT_NEAR(conductance.Mean(), 30, kErrors * 3 / std::sqrt(independent));
        EXPECT_NEAR(std::sqrt(conductance.Variance()), 3, kErrors * 3 / std::sqrt(independent));
        EXPECT_NEAR(products.Mean(), correlation, kErrors * std::sqrt(2 / independent));
    }
}

// By the linear theory of that paper a passive cell of 10 nS, -70 mV and 200 pF has -62.975 mV on
// average and a deviation of 1.944 mV; what both conductances do together makes 0.05 mV more. 60 s
// are some 2,000 correlation times.
TEST(NoiseTest, SynapsesMoveACellsPotentialAsTheirTheorySays) {
    Rehearsal cell{{"cell.model", "passive"},
                   {"cell.capacitance", 200},
                   {"cell.resistance", 100},
                   {"synapses.excitatoryConductance", 12},
                   {"synapses.excitatoryDeviation", 3},
                   {"synapses.inhibitoryConductance", 57},
                   {"synapses.inhibitoryDeviation", 6.6}};
    Moments potential;
    for (int point = 0; point < 60000; ++point) potential.Add(cell.Advance(0, 1000));
    EXPECT_NEAR(potential.Mean(), -62.975, 0.05 + kErrors * 1.944 / std::sqrt(2000));
    EXPECT_NEAR(std::sqrt(potential.Variance()), 1.944, kErrors * 1.944 / std::sqrt(4000));
}

// 1,000 potassium channels of the squid axon at -30 mV: N n⁴ = 354.12 are open on average, with the
// binomial variance 228.7. One long step draws them anew; 10 µs are the leaps of a simulation,
// whose channels stay as they are for some 2 ms.
TEST(NoiseTest, AsManyChannelsAreOpenAsTheBinomialLawSays) {
    const itc18::GateLaw law = itc18::SquidAxon::Laws(-30)[2];
    for (const auto& [step, draws, independent] :
         {std::tuple(100.0, 40000, 40000.0), {0.01, 400000, 1000.0}}) {
        itc18::ChannelNoise channels(1000, 4, false);
        itc18::RandomStream stream(3, 1);
        channels.Settle(stream, law.steady, 1);
        const double left = std::exp(-law.rate * step);
        const itc18::ParticleStep moved{law.steady + (1 - law.steady) * left,
                                        law.steady * (1 - left)};
        Moments open;
        for (int draw = 0; draw < draws; ++draw) {
            channels.Advance(stream, moved, {1, 1});
            open.Add(1000 * channels.OpenFraction());
        }
        EXPECT_NEAR(open.Mean(), 354.12, kErrors * std::sqrt(228.7 / independent));
        EXPECT_NEAR(open.Variance(), 228.7, kErrors * 228.7 * std::sqrt(2 / independent));
    }
}

// A cell of countless channels is the limit of ever more of them, of which ten million are as many
// as are simulated. Their noise at rest, 0.03 mV, moves a spike by some 5 µs, in which it rises by
// 2 mV.
TEST(NoiseTest, CountlessChannelsAreTheLimitOfMany) {
    Rehearsal many{{"cell.channelConductance", 1e-300}}, countless{};
    for (int point = 0; point < 400; ++point)
        EXPECT_NEAR(many.Advance(200, 20), countless.Advance(200, 20), kErrors * 2);
}

std::vector<double> NoisySignals(double seed) {
    Rehearsal cell{{"cell.channelConductance", 20},
                   {"electrode.potentialNoise", 0.1},
                   {"synapses.excitatoryDeviation", 0.5},
                   {"noise.seed", seed}};
    std::vector<double> signals;
    for (int point = 0; point < 200; ++point) signals.push_back(cell.Advance(0, 50));
    itc18::Preparation copy = cell.preparation;
    copy.Advance(100, 50);
    cell.preparation.Advance(100, 50);
    EXPECT_EQ(copy.Signal(), cell.preparation.Signal()) << "a copy has the same future";
    return signals;
}

TEST(NoiseTest, ASeedDecidesEverything) {
    const auto first = NoisySignals(1);
    EXPECT_EQ(first, NoisySignals(1));
    EXPECT_NE(first, NoisySignals(2));
}

// 0.5 mV at every sample, of any interval.
TEST(NoiseTest, TheRecordingsOwnNoiseIsOfTheStatedDeviation) {
    for (const double interval : {4.0, 200.0}) {
        Rehearsal cell{{"cell.model", "passive"}, {"electrode.potentialNoise", 0.5}};
        Moments noise;
        for (int point = 0; point < 20000; ++point) noise.Add(cell.Advance(0, interval));
        EXPECT_NEAR(noise.Mean(), -70, kErrors * 0.5 / std::sqrt(20000));
        EXPECT_NEAR(std::sqrt(noise.Variance()), 0.5, kErrors * 0.5 / std::sqrt(40000));
    }
}

}  // namespace
