// The squid axon behind the ideal electrode: what the simulated rig has always recorded.
#include <algorithm>
#include <cmath>
#include <cstdint>

#include "cells/Rehearsal.h"

namespace {

// Steps that a linear congruence draws, small and over the converter's whole range.
class Commands {
  public:
    int16_t Next() {
        if (++points % 50 == 0) drawn = drawn * 1664525 + 1013904223;
        const auto whole = static_cast<int16_t>(drawn >> 16);
        return static_cast<int16_t>(points % 400 < 300 ? whole / 8 : whole);
    }

  private:
    uint32_t drawn = 1;
    int points = 0;
};

uint64_t DigestOfSamples(double interval, int points) {
    itc18::Preparation preparation{itc18::PreparationSettings{}};
    Commands commands;
    preparation.Settle(800);
    uint64_t digest = 0xCBF29CE484222325;  // FNV-1a
    for (int point = 0; point < points; ++point) {
        const double counts = std::clamp(std::round(preparation.Signal()), -32768.0, 32767.0);
        digest = (digest ^ static_cast<uint16_t>(static_cast<int16_t>(counts))) * 0x100000001B3;
        preparation.Advance(commands.Next(), interval);
    }
    return digest;
}

// The digests are those of the samples before there was anything but this axon.
TEST(DefaultRigTest, RecordsWhatItAlwaysRecorded) {
    EXPECT_EQ(DigestOfSamples(4, 20000), 0x516191B6072827BCU);
    EXPECT_EQ(DigestOfSamples(50, 20000), 0x30AAD38B1300214BU);
    EXPECT_EQ(DigestOfSamples(1000, 2000), 0xABF5157E0A61B8FDU);
}

// Rates are continuous where their formulas are zero over zero, at -40 and at -55 mV.
TEST(DefaultRigTest, CurrentsAreContinuousWhereRatesHaveNoFormula) {
    for (const double singular : {-40.0, -55.0}) {
        const auto currentAt = [](double potential) {
            Rehearsal clamp{{"amplifier.mode", "voltageClamp"}};
            clamp.Settle(potential);
            return clamp.Signal();
        };
        EXPECT_NEAR(currentAt(singular), currentAt(singular + 1e-6), 1e-3);
    }
}

}  // namespace
