// The library's own generators, and the exported functions that draw from them.
#include "ITCUtilities/Random/LibraryGenerators.h"

#include <cstdlib>

#include "Corvantis.h"
#include "ITCUtilities/Random/GnuRandom.h"

namespace corvantis {
namespace {

#if defined(__GLIBC__)
// The platform's generator, which applications seed and draw from as well.
class PlatformRandom : public OldGenerator {
  public:
    void Seed(uint32_t seed) override { std::srand(seed); }
    int32_t Draw() override { return std::rand(); }
};

constinit PlatformRandom older;
#else
// Another platform's numbers are others, and may be fewer than noise asks for.
GnuRandom older;
#endif
constinit NoiseGenerators generators(older);

uint32_t next = 1;

}  // namespace

NoiseGenerators& LibraryGenerators() { return generators; }

}  // namespace corvantis

using corvantis::LibraryGenerators;

float ran2(int32_t* idum) {
    return corvantis::DrawUniformDeviate(LibraryGenerators().uniform, *idum);
}

float ITCSeedRandom(int32_t* idum) { return ran2(idum); }

float ITCNormalDeviate(int32_t* idum) {
    return corvantis::DrawNormalDeviate(LibraryGenerators(), *idum);
}

float V4ITCNormalDeviate() { return corvantis::DrawOldNormalDeviate(LibraryGenerators()); }

uint32_t kr_rand() {
    corvantis::next = corvantis::next * 1103515245u + 12345u;
    return (corvantis::next >> 16) & 32767u;
}

void kr_srand(uint32_t seed) { corvantis::next = seed; }
