// Normal deviates by the polar method, on the long-period generator and, for old files, on another.
#include <algorithm>
#include <array>

#include "ITCUtilities/FunctionClones.h"
#include "ITCUtilities/Random/NoiseGenerators.h"
#include "ITCUtilities/Random/PolarFactor.h"

namespace corvantis {
namespace {

constexpr double kLargestOldNumber = 2147483647.0;

// draw() gives a deviate uniform in -1 to 1, in single precision.
template <class Draw>
float PolarDeviate(SpareDeviate& held, Draw draw) {
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
    float fac = 0.0F;
    CalculatePolarFactors({&rsq, 1}, {&fac, 1});
    held = {1, fac * x1};
    return fac * x2;
}

// Doubling is exact: in single precision the difference is rounded once, as from double precision.
float SymmetricDeviate(float uniform) { return 2.0F * uniform - 1.0F; }
float SymmetricDeviate(OldGenerator& generator) {
    return static_cast<float>(2.0 * generator.Draw() / kLargestOldNumber - 1.0);
}

constexpr size_t kBatch = 1024;

// Points as they are drawn, one coordinate after the other, and their squared distances.
struct Points {
    std::array<float, 2 * kBatch> coordinates;
    std::array<float, kBatch> squares;
};

CORVANTIS_CLONES void CalculateSquares(float* __restrict squares,
                                       const float* __restrict coordinates, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        const float x1 = coordinates[2 * i];
        const float x2 = coordinates[2 * i + 1];
        squares[i] = x1 * x1 + x2 * x2;
    }
}

// Moves the points within the unit circle, its centre excepted, to the front; returns their number.
size_t KeepAccepted(Points& points, size_t count) {
    size_t accepted = 0;
    for (size_t i = 0; i < count; ++i) {
        const float square = points.squares[i];
        points.coordinates[2 * accepted] = points.coordinates[2 * i];
        points.coordinates[2 * accepted + 1] = points.coordinates[2 * i + 1];
        points.squares[accepted] = square;
        accepted += square < 1.0F && square > 0.0F ? 1 : 0;
    }
    return accepted;
}

CORVANTIS_CLONES void MultiplyPairs(float* __restrict deviates, const float* __restrict coordinates,
                                    const float* __restrict factors, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        deviates[2 * i] = factors[i] * coordinates[2 * i + 1];
        deviates[2 * i + 1] = factors[i] * coordinates[2 * i];
    }
}

// Never draws more points than are wanted, so exactly as many numbers are drawn as by single
// deviates. draw(numbers) gives numbers uniform in -1 to 1.
template <class Draw>
void DrawDeviates(SpareDeviate& held, std::span<float> deviates, Draw draw) {
    if (held.iset != 0 && !deviates.empty()) {
        held.iset = 0;
        deviates[0] = held.gset;
        deviates = deviates.subspan(1);
    }
    Points points;
    std::array<float, kBatch> factors;
    while (!deviates.empty()) {
        const size_t drawn = std::min(kBatch, (deviates.size() + 1) / 2);
        draw(std::span(points.coordinates).first(2 * drawn));
        CalculateSquares(points.squares.data(), points.coordinates.data(), drawn);
        const size_t count = KeepAccepted(points, drawn);
        CalculatePolarFactors(std::span(points.squares).first(count), factors);
        const size_t whole = std::min(count, deviates.size() / 2);
        MultiplyPairs(deviates.data(), points.coordinates.data(), factors.data(), whole);
        deviates = deviates.subspan(2 * whole);
        if (whole == count) continue;
        held = {1, factors[whole] * points.coordinates[2 * whole]};
        deviates[0] = factors[whole] * points.coordinates[2 * whole + 1];
        return;
    }
}

}  // namespace

float DrawNormalDeviate(NoiseGenerators& generators, int32_t& word) {
    return PolarDeviate(generators.spare, [&] {
        return SymmetricDeviate(DrawUniformDeviate(generators.uniform, word));
    });
}

void DrawNormalDeviates(NoiseGenerators& generators, int32_t& word, std::span<float> deviates) {
    DrawDeviates(generators.spare, deviates, [&](std::span<float> numbers) {
        DrawUniformDeviates(generators.uniform, word, numbers);
        for (float& number : numbers) number = SymmetricDeviate(number);
    });
}

float DrawOldNormalDeviate(NoiseGenerators& generators) {
    return PolarDeviate(generators.oldSpare, [&] { return SymmetricDeviate(*generators.old); });
}

void DrawOldNormalDeviates(NoiseGenerators& generators, std::span<float> deviates) {
    DrawDeviates(generators.oldSpare, deviates, [&](std::span<float> numbers) {
        for (float& number : numbers) number = SymmetricDeviate(*generators.old);
    });
}

}  // namespace corvantis
