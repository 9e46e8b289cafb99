// What noise draws from: the generators' whole state, handed to every waveform that needs it.
#pragma once

#include <cstdint>
#include <span>

#include "ITCUtilities/Random/LongPeriodGenerator.h"

namespace corvantis {

// Normal deviates are made in pairs, and the second one waits here. Restarting a generator
// deliberately leaves it, so the first deviate of a noise may stem from the noise before.
struct SpareDeviate {
    int32_t iset = 0;  // 1: one is held
    float gset = 0.0F;
};

// Where the noise of files up to version 4 has its uniform numbers from: 0 to 2147483647.
class OldGenerator {
  public:
    virtual void Seed(uint32_t seed) = 0;
    virtual int32_t Draw() = 0;

  protected:
    ~OldGenerator() = default;
};

struct NoiseGenerators {
    constexpr explicit NoiseGenerators(OldGenerator& oldGenerator) : old(&oldGenerator) {}
    LongPeriodState uniform;
    SpareDeviate spare;
    OldGenerator* old;  // another's
    SpareDeviate oldSpare;
};

// Many deviates at once: the same numbers, and the same state behind them, as by single draws.
float DrawNormalDeviate(NoiseGenerators& generators, int32_t& word);
void DrawNormalDeviates(NoiseGenerators& generators, int32_t& word, std::span<float> deviates);
float DrawOldNormalDeviate(NoiseGenerators& generators);
void DrawOldNormalDeviates(NoiseGenerators& generators, std::span<float> deviates);

}  // namespace corvantis
