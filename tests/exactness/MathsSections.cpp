// The maths library's functions at arguments as the stimuli ask for: what else may differ.
#include <cmath>

#include "Corvantis.h"
#include "Report.h"

namespace exactness {

// The logarithm, and the root behind it, of pairs as the polar method draws them.
static void ReportDeviates(Report& report) {
    std::vector<double> logarithms, roots;
    int32_t word = -1;
    while (logarithms.size() < 500000) {
        const float x1 = static_cast<float>(2.0 * ran2(&word) - 1.0);
        const float x2 = static_cast<float>(2.0 * ran2(&word) - 1.0);
        const float rsq = x1 * x1 + x2 * x2;
        if (!(rsq < 1.0F && rsq != 0.0F)) continue;
        logarithms.push_back(std::log(double{rsq}));
        roots.push_back(std::sqrt(double{rsq}));
    }
    report.Add<uint64_t>("maths-log", logarithms);
    report.Add<uint64_t>("maths-sqrt", roots);
}

void ReportMaths(Report& report) {
    constexpr double kTwoPi = 6.283184;
    std::vector<double> waves, turns, powers, fused;
    std::vector<float> fusedSingles;
    for (const int32_t period : {1, 2, 3, 4, 5, 7, 10, 97, 100, 1000, 1001, 7919, 99991, -7}) {
        for (const double interval : {4, 10, 33, 50, 100, 65535}) {
            const double w = kTwoPi / (period * interval * 1e-6);
            for (int i = 0; i < 1000; ++i) waves.push_back(std::sin(i * interval * 1e-6 * w));
        }
    }
    for (int length = 2; length <= 1 << 24; length *= 2) {
        for (const double theta : {kTwoPi / length, -kTwoPi / length})
            turns.insert(turns.end(), {std::sin(theta), std::sin(0.5 * theta)});
    }
    for (const double order : {0.0, 1.0, 2.0, 3.0, 4.0}) {
        for (const double cutoff : {1.0, 60.0, 300.0, 5000.0}) {
            for (int i = 0; i < 20000; ++i) {
                const float f = static_cast<float>(i * 0.1525879 / cutoff);
                powers.push_back(std::pow(double{1.0F / (f * f + 1.0F)}, order));
            }
        }
    }
    for (int32_t word = -1; fused.size() < 500000;) {
        const float a = ran2(&word);
        const float b = ran2(&word);
        fused.push_back(std::fma(double{a} / 3, double{b} / 7, -double{a} * double{b} / 21));
        fusedSingles.push_back(std::fma(a, b, -(a * b)));
    }
    report.Add<uint64_t>("maths-sin", waves);
    report.Add<uint64_t>("maths-sin-transform", turns);
    report.Add<uint64_t>("maths-pow", powers);
    report.Add<uint64_t>("maths-fma", fused);
    report.Add<uint32_t>("maths-fmaf", fusedSingles);
    ReportDeviates(report);
}

}  // namespace exactness
