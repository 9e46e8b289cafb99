// The model neuron against the literature.
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "simulator/ModelNeuron.h"

namespace {

// Spikes (crossings of 0 mV) of one second of a current step [µA/cm²] from rest, and its peak.
struct Response {
    std::vector<double> spikes;  // [ms]
    double peak = -100;          // [mV]

    // [Hz], without the first interval
    double Rate() const { return 1000 * double(spikes.size() - 2) / (spikes.back() - spikes[1]); }
};

Response Step(double density, double longestStep = itc18::kLongestStep) {
    itc18::ModelNeuron neuron = itc18::SteadyState(0);
    Response response;
    for (int pass = 0; pass < 100000; ++pass) {
        const double before = neuron.potential;
        itc18::Advance(neuron, density * itc18::kMembraneArea / 100, 10, longestStep);
        response.peak = std::max(response.peak, neuron.potential);
        if (before < 0 && neuron.potential >= 0)
            response.spikes.push_back((pass + before / (before - neuron.potential)) / 100);
    }
    return response;
}

TEST(ModelNeuronTest, GatesAtRestAreThePublishedOnes) {
    const auto [potential, m, h, n] = itc18::SteadyState(0);
    EXPECT_NEAR(potential, -65.0, 0.01);
    EXPECT_NEAR(m, 0.0529, 5e-5);
    EXPECT_NEAR(h, 0.5961, 5e-5);
    EXPECT_NEAR(n, 0.3177, 5e-5);
}

TEST(ModelNeuronTest, RatesAreContinuousWhereTheirFormulasAreZeroOverZero) {
    for (const double singular : {-40.0, -55.0}) {
        itc18::ModelNeuron at{singular, 0.2, 0.3, 0.4}, beside{singular + 1e-7, 0.2, 0.3, 0.4};
        for (auto* neuron : {&at, &beside}) itc18::Advance(*neuron, 0, 5);
        EXPECT_NEAR(at.m + at.n, beside.m + beside.n, 1e-8);
    }
}

// One spike from about 2.3 µA/cm²; firing without end from 6.26 (J. Rinzel and R. N. Miller, Math.
// Biosci. 49:27-59, 1980) at 50 Hz, 68 Hz at 10.
TEST(ModelNeuronTest, FiresAsTheLiteratureHasIt) {
    EXPECT_EQ(Step(2.2).spikes.size(), 0u);
    EXPECT_EQ(Step(2.5).spikes.size(), 1u);
    EXPECT_LE(Step(6.1).spikes.size(), 3u);
    EXPECT_NEAR(Step(6.3).Rate(), 52, 2);
    const Response ten = Step(10), finer = Step(10, itc18::kLongestStep / 2);
    EXPECT_NEAR(ten.Rate(), 68, 1);
    EXPECT_NEAR(ten.peak, 40, 2);
    EXPECT_NEAR(ten.spikes.back(), finer.spikes.back(), 0.02) << "the step is not short enough";
}

}  // namespace
