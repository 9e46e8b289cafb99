// The maths library's functions at arguments as the stimuli ask for: what else may differ. Square
// roots and fused operations are rounded correctly everywhere.
#include <cmath>

#include "Corvantis.h"
#include "Report.h"

namespace exactness {

void ReportMaths(Report& report) {
    constexpr double kTwoPi = 6.283184;
    std::vector<double> waves, turns, logarithms, powers;
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
    // Of pairs as the polar method draws them.
    for (int32_t word = -1; logarithms.size() < 500000;) {
        const float x1 = static_cast<float>(2.0 * ran2(&word) - 1.0);
        const float x2 = static_cast<float>(2.0 * ran2(&word) - 1.0);
        const float rsq = x1 * x1 + x2 * x2;
        if (rsq < 1.0F && rsq != 0.0F) logarithms.push_back(std::log(double{rsq}));
    }
    for (const double order : {0.0, 1.0, 2.0, 3.0, 4.0}) {
        for (const double cutoff : {1.0, 60.0, 300.0, 5000.0}) {
            for (int i = 0; i < 20000; ++i) {
                const float f = static_cast<float>(i * 0.1525879 / cutoff);
                powers.push_back(std::pow(double{1.0F / (f * f + 1.0F)}, order));
            }
        }
    }
    report.Add<uint64_t>("maths-sin", waves);
    report.Add<uint64_t>("maths-sin-transform", turns);
    report.Add<uint64_t>("maths-log", logarithms);
    report.Add<uint64_t>("maths-pow", powers);
}

}  // namespace exactness
