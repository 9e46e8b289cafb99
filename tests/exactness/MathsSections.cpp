// The maths library's functions at arguments as the stimuli ask for: what else may differ.
#include <cmath>

#include "Corvantis.h"
#include "SampleGrid.h"
#include "Sections.h"

namespace exactness {
namespace {

constexpr double kTwoPi = 6.283184;
constexpr int kPairs = 500000;
constexpr int kBins = 20000;

std::vector<double> SinesOfWaves() {
    std::vector<double> sines;
    for (const int32_t period : kPeriods) {
        if (period == 0) continue;
        for (const double interval : kIntervals) {
            const double w = kTwoPi / (period * interval * 1e-6);
            for (int i = 0; i < kSinePoints; ++i) {
                sines.push_back(std::sin(i * interval * 1e-6 * w));
            }
        }
    }
    return sines;
}

std::vector<double> SinesOfTransforms() {
    std::vector<double> sines;
    for (int length = 2; length <= 1 << 24; length *= 2) {
        for (const double theta : {kTwoPi / length, -kTwoPi / length}) {
            sines.push_back(std::sin(theta));
            sines.push_back(std::sin(0.5 * theta));
        }
    }
    return sines;
}

// The logarithm, and the root behind it, of pairs as the polar method draws them.
void ReportDeviates(Report& report) {
    std::vector<double> logarithms;
    std::vector<double> roots;
    int32_t word = -1;
    while (logarithms.size() < kPairs) {
        const float x1 = static_cast<float>(2.0 * ran2(&word) - 1.0);
        const float x2 = static_cast<float>(2.0 * ran2(&word) - 1.0);
        const float rsq = x1 * x1 + x2 * x2;
        if (!(rsq < 1.0F && rsq != 0.0F)) continue;
        logarithms.push_back(std::log(double{rsq}));
        roots.push_back(std::sqrt(double{rsq}));
    }
    report.Add("maths-log", logarithms);
    report.Add("maths-sqrt", roots);
}

std::vector<double> Powers() {
    std::vector<double> powers;
    for (const double order : {0.0, 1.0, 2.0, 3.0, 4.0}) {
        for (const double cutoff : {1.0, 60.0, 300.0, 5000.0}) {
            for (int i = 0; i < kBins; ++i) {
                const float f = static_cast<float>(i * 0.1525879 / cutoff);
                powers.push_back(std::pow(double{1.0F / (f * f + 1.0F)}, order));
            }
        }
    }
    return powers;
}

void ReportFused(Report& report) {
    std::vector<double> doubles;
    std::vector<float> singles;
    int32_t word = -1;
    for (int i = 0; i < kPairs; ++i) {
        const float a = ran2(&word);
        const float b = ran2(&word);
        doubles.push_back(std::fma(double{a} / 3, double{b} / 7, -double{a} * double{b} / 21));
        singles.push_back(std::fma(a, b, -(a * b)));
    }
    report.Add("maths-fma", doubles);
    report.Add("maths-fmaf", singles);
}

}  // namespace

void ReportMaths(Report& report) {
    report.Add("maths-sin", SinesOfWaves());
    report.Add("maths-sin-transform", SinesOfTransforms());
    ReportDeviates(report);
    report.Add("maths-pow", Powers());
    ReportFused(report);
}

}  // namespace exactness
