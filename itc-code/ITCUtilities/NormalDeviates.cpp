// Normal deviates by the polar method, on ran2 and, for old files, on the platform's rand.
#include <algorithm>
#include <cstdlib>
#include <utility>

#include "Corvantis.h"
#include "ITCUtilities/BulkDeviates.h"
#include "ITCUtilities/LongPeriodGenerator.h"
#include "ITCUtilities/PolarFactor.h"

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
    const float fac = PolarFactor(rsq);
    held = {1, fac * x1};
    return fac * x2;
}

// Doubling is exact: in single precision the difference is rounded once, as from double precision.
float SymmetricDeviate(float uniform) { return 2.0F * uniform - 1.0F; }
float SymmetricRand() { return static_cast<float>(2.0 * std::rand() / kLargestRand - 1.0); }

constexpr size_t kBatch = 256;

// Points in the unit circle with their squared distances.
struct Accepted {
    float x1[kBatch];
    float x2[kBatch];
    float square[kBatch];
};

// Exactly `count` points, from as many numbers as single deviates would draw.
template <class Draw>
void DrawPoints(Accepted& points, size_t count, Draw draw) {
    for (size_t accepted = 0; accepted < count;) {
        const float x1 = draw();
        const float x2 = draw();
        const float square = x1 * x1 + x2 * x2;
        points.x1[accepted] = x1;
        points.x2[accepted] = x2;
        points.square[accepted] = square;
        accepted += square < 1.0F && square != 0.0F ? 1 : 0;
    }
}

template <class Draw>
void DrawDeviates(Spare& held, std::span<float> deviates, Draw draw) {
    if (held.iset != 0 && !deviates.empty()) {
        held.iset = 0;
        deviates[0] = held.gset;
        deviates = deviates.subspan(1);
    }
    Accepted points;
    float factors[kBatch];
    while (!deviates.empty()) {
        const size_t count = std::min(kBatch, (deviates.size() + 1) / 2);
        DrawPoints(points, count, draw);
        CalculatePolarFactors({points.square, count}, {factors, count});
        const size_t whole = std::min(count, deviates.size() / 2);
        for (size_t i = 0; i < whole; ++i) {
            deviates[2 * i] = factors[i] * points.x2[i];
            deviates[2 * i + 1] = factors[i] * points.x1[i];
        }
        deviates = deviates.subspan(2 * whole);
        if (whole == count) continue;
        held = {1, factors[whole] * points.x1[whole]};
        deviates[0] = factors[whole] * points.x2[whole];
        return;
    }
}

}  // namespace

void DrawNormalDeviates(int32_t& state, std::span<float> deviates) {
    UniformRun run(state);
    DrawDeviates(spare, deviates, [&run] { return SymmetricDeviate(run.Next()); });
}

void DrawOldNormalDeviates(std::span<float> deviates) {
    DrawDeviates(oldSpare, deviates, SymmetricRand);
}

}  // namespace corvantis

float ITCNormalDeviate(int32_t* idum) {
    return corvantis::PolarDeviate(corvantis::spare,
                                   [idum] { return corvantis::SymmetricDeviate(ran2(idum)); });
}

float V4ITCNormalDeviate() {
    return corvantis::PolarDeviate(corvantis::oldSpare, corvantis::SymmetricRand);
}
