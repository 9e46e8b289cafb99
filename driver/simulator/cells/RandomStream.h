// The preparation's own chance: a stream of numbers that its seed alone decides.
//
// xoshiro256++ 1.0: D. Blackman and S. Vigna, "Scrambled linear pseudorandom number generators",
// ACM Trans. Math. Softw. 47:36 (2021). Its state is made of the seed by SplitMix64: G. L. Steele,
// D. Lea and C. H. Flood, "Fast splittable pseudorandom number generators", OOPSLA (2014).
#pragma once

#include <array>
#include <cstdint>

namespace itc18 {

class RandomStream {
  public:
    // Streams of one seed with different numbers have nothing to do with each other.
    RandomStream(uint64_t seed, uint64_t number);
    explicit RandomStream(const std::array<uint64_t, 4>& given) : state(given) {}

    uint64_t Next();
    double Uniform();  // above 0, below 1

    // Standard normal deviates, exact, by the polar method: G. Marsaglia and T. A. Bray, "A
    // convenient method for generating normal variables", SIAM Rev. 6:260-264 (1964).
    double Normal();

    // How many of `count` [0 or more] happen that are of this probability each [0 to 1], exact, by
    // inversion from 0 or from the most probable number.
    int64_t Binomial(int64_t count, double probability);

  private:
    std::array<uint64_t, 4> state;
    double spare = 0;
    bool hasSpare = false;
};

// The next number of SplitMix64.
uint64_t SplitMix(uint64_t& state);

}  // namespace itc18
