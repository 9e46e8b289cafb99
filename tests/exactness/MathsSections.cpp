// The library's own functions at arguments as the stimuli ask for. Their correctness is held by
// tests/maths/; here every host must give the same bits.
#include "Corvantis.h"
#include "ITCUtilities/Maths/Functions.h"
#include "ITCUtilities/Maths/FusedOperation.h"
#include "Report.h"

namespace exactness {
namespace {

using corvantis::Logarithm;
using corvantis::Power;
using corvantis::Sine;

constexpr double kTwoPi = 6.283184;

std::vector<double> Waves() {
    std::vector<double> values;
    for (const int32_t period : {1, 2, 3, 4, 5, 7, 10, 97, 100, 1000, 1001, 7919, 99991, -7}) {
        for (const double interval : {4, 10, 33, 50, 100, 65535}) {
            const double w = kTwoPi / (period * interval * 1e-6);
            for (int i = 0; i < 1000; ++i) values.push_back(Sine(i * interval * 1e-6 * w));
        }
    }
    return values;
}

std::vector<double> TurnsOfTransforms() {
    std::vector<double> values;
    for (int length = 2; length <= 1 << 24; length *= 2) {
        for (const double theta : {kTwoPi / length, -kTwoPi / length})
            values.insert(values.end(), {Sine(theta), Sine(0.5 * theta)});
    }
    return values;
}

// Of pairs as the polar method draws them.
std::vector<double> Logarithms() {
    std::vector<double> values;
    for (int32_t word = -1; values.size() < 500000;) {
        const float x1 = static_cast<float>(2.0 * ran2(&word) - 1.0);
        const float x2 = static_cast<float>(2.0 * ran2(&word) - 1.0);
        const float rsq = x1 * x1 + x2 * x2;
        if (rsq < 1.0F && rsq != 0.0F) values.push_back(Logarithm(double{rsq}));
    }
    return values;
}

std::vector<double> Powers() {
    std::vector<double> values;
    for (const int32_t order : {0, 1, 2, 3, 4}) {
        for (const double cutoff : {1.0, 60.0, 300.0, 5000.0}) {
            for (int i = 0; i < 20000; ++i) {
                const float f = static_cast<float>(i * 0.1525879 / cutoff);
                values.push_back(Power(double{1.0F / (f * f + 1.0F)}, order));
            }
        }
    }
    return values;
}

// Without the instruction, for which all the bits of three numbers are drawn.
template <class Bits, class Number>
std::vector<Number> FusedSums(Number (*fused)(Number, Number, Number)) {
    std::vector<Number> values;
    uint64_t state = 1;
    const auto draw = [&state] {
        state = state * 6364136223846793005u + 1442695040888963407u;
        return std::bit_cast<Number>(static_cast<Bits>(state >> (64 - 8 * sizeof(Bits))));
    };
    while (values.size() < 100000) {
        const Number a = draw(), b = draw(), c = draw();
        for (const Number value : {fused(a, b, c), fused(a, b, -(a * b)), fused(a, b, c * a)})
            if (value == value) values.push_back(value);
    }
    return values;
}

}  // namespace

void ReportMaths(Report& report) {
    report.Add<uint64_t>("maths-sin", Waves());
    report.Add<uint64_t>("maths-sin-transform", TurnsOfTransforms());
    report.Add<uint64_t>("maths-log", Logarithms());
    report.Add<uint64_t>("maths-pow", Powers());
    report.Add<uint64_t>("maths-fma", FusedSums<uint64_t, double>(corvantis::FusedInWords));
    report.Add<uint32_t>("maths-fma-single",
                         FusedSums<uint32_t, float>([](float a, float b, float c) {
                             return corvantis::FusedByRoundingToOdd(a, b, c);
                         }));
}

}  // namespace exactness
