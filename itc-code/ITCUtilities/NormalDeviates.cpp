// Normal deviates by the polar method, on ran2 and, for old files, on the platform's rand.
#include <cmath>
#include <cstdlib>

#include "Corvantis.h"

namespace corvantis {
namespace {

// The divisor is the home platform's largest rand value, whatever RAND_MAX is here.
constexpr double kLargestRand = 2147483647.0;

// The second deviate of a pair waits here; reseeding the generator deliberately leaves it, so the
// first deviate of a waveform may stem from the waveform before.
struct Spare {
    int32_t iset = 0;
    float gset = 0.0F;
};

Spare spare;
Spare oldSpare;

// draw() gives a deviate uniform in -1 to 1, in single precision.
template <class Draw>
float PolarDeviate(Spare& held, Draw draw) {
    if (held.iset != 0) {
        held.iset = 0;
        return held.gset;
    }
    float x1;
    float x2;
    float rsq;
    do {
        x1 = draw();
        x2 = draw();
        rsq = x1 * x1 + x2 * x2;
    } while (!(rsq < 1.0F && rsq != 0.0F));
    const float fac = static_cast<float>(std::sqrt(-2.0 * std::log(double{rsq}) / double{rsq}));
    held = {1, fac * x1};
    return fac * x2;
}

}  // namespace
}  // namespace corvantis

float ITCNormalDeviate(int32_t* idum) {
    return corvantis::PolarDeviate(corvantis::spare,
                                   [idum] { return static_cast<float>(2.0 * ran2(idum) - 1.0); });
}

float V4ITCNormalDeviate() {
    return corvantis::PolarDeviate(corvantis::oldSpare, [] {
        return static_cast<float>(2.0 * std::rand() / corvantis::kLargestRand - 1.0);
    });
}
