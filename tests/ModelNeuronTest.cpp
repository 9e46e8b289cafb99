// The model neuron where its formulas have no value; the demo compares it with the literature.
#include <gtest/gtest.h>

#include "simulator/ModelNeuron.h"

namespace {

TEST(ModelNeuronTest, RatesAreContinuousWhereTheirFormulasAreZeroOverZero) {
    for (const double singular : {-40.0, -55.0}) {
        itc18::ModelNeuron at{singular, 0.2, 0.3, 0.4}, beside{singular + 1e-7, 0.2, 0.3, 0.4};
        for (auto* neuron : {&at, &beside}) itc18::Advance(*neuron, 0, 5);
        EXPECT_NEAR(at.m + at.n, beside.m + beside.n, 1e-8);
    }
}

}  // namespace
