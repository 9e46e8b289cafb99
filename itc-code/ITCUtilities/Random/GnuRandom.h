// The random numbers of the GNU C library's rand, without its process-wide state.
#pragma once

#include <array>
#include <cstdint>

#include "ITCUtilities/Random/NoiseGenerators.h"

namespace corvantis {

// An additive generator: each word is the sum of those 3 and 31 before it, of which all but the
// lowest bit is given out (Knuth, The Art of Computer Programming 2, 3.2.2).
class GnuRandom final : public OldGenerator {
  public:
    GnuRandom() { SeedWords(1); }
    void Seed(uint32_t seed) override { SeedWords(seed); }
    int32_t Draw() override;

  private:
    static constexpr size_t kWords = 31;
    static constexpr size_t kLag = 3;
    void SeedWords(uint32_t seed);

    std::array<uint32_t, kWords> words_ = {};
    size_t next_ = 0;
};

}  // namespace corvantis
