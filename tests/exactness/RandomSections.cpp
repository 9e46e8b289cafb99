// The random numbers and the transform that the noise is made of.
#include <cmath>
#include <cstdlib>

#include "Corvantis.h"
#include "Sections.h"

namespace exactness {
namespace {

constexpr int kDraws = 1000000;
constexpr int kWordStride = 1000;
// Odd, so that the spare of the last pair is held across the next restart.
constexpr int kDeviates = 200001;

void ReportUniform(Report& report, int32_t seed) {
    int32_t word = -seed;
    std::vector<float> draws;
    std::vector<int32_t> words;
    for (int i = 0; i < kDraws; ++i) {
        draws.push_back(ran2(&word));
        if (i % kWordStride == 0) words.push_back(word);
    }
    report.Add("ran2-seed-" + std::to_string(seed), draws);
    report.Add("ran2-words-seed-" + std::to_string(seed), words);
}

// Below 0 a seed continues the sequence of the one before.
std::vector<float> NormalDeviates() {
    std::vector<float> deviates;
    for (const int32_t seed : {0, 7, -3, 99991, 2147483647}) {
        int32_t word = -seed;
        ITCSeedRandom(&word);
        for (int i = 0; i < kDeviates; ++i) deviates.push_back(ITCNormalDeviate(&word));
    }
    return deviates;
}

std::vector<float> OldNormalDeviates() {
    std::vector<float> deviates;
    for (const unsigned seed : {1u, 12345u}) {
        std::srand(seed);
        for (int i = 0; i < kDeviates; ++i) deviates.push_back(V4ITCNormalDeviate());
    }
    return deviates;
}

std::vector<int32_t> PlatformNumbers() {
    std::vector<int32_t> numbers;
    for (const unsigned seed : {0u, 1u, 12345u, 4294967289u}) {
        std::srand(seed);
        for (int i = 0; i < kDeviates; ++i) numbers.push_back(std::rand());
    }
    return numbers;
}

std::vector<int32_t> CallersNumbers() {
    std::vector<int32_t> numbers(kDeviates);
    kr_srand(1);
    for (int32_t& number : numbers) number = static_cast<int32_t>(kr_rand());
    return numbers;
}

}  // namespace

void ReportRandomNumbers(Report& report) {
    for (const int32_t seed : {0, 2, 12345, 2147483647}) ReportUniform(report, seed);
    report.Add("normal-deviates", NormalDeviates());
    report.Add("kr-rand", CallersNumbers());
    report.Add("platform-rand", PlatformNumbers());
    report.Add("platform-rand-normal-deviates", OldNormalDeviates());
}

void ReportTransforms(Report& report) {
    std::vector<float> forward;
    std::vector<float> inverse;
    int32_t word = -1;
    for (uint32_t nn = 1; nn <= 65536; nn *= 2) {
        std::vector<float> data(2 * nn + 1);
        for (float& value : data) value = 2000.0F * ran2(&word) - 1000.0F;
        ITCfft(1, nn, data.data());
        forward.insert(forward.end(), data.begin(), data.end());
        ITCfft(-1, nn, data.data());
        inverse.insert(inverse.end(), data.begin(), data.end());
    }
    report.Add("transform-forward", forward);
    report.Add("transform-inverse", inverse);
}

}  // namespace exactness
