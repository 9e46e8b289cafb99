// Holds the exact functions to MPFR: AgainstMpfr [THOUSANDS], of arguments of each kind. Kinds are
// the stimuli's own, what their guards leave to the functions, all doubles, and hard cases: a scan
// takes a hundred times as many arguments and hands over those whose result lies within 2^-75 of a
// boundary of rounding.
#include <cstdlib>
#include <random>

#include "ITCUtilities/Maths/Functions.h"
#include "ITCUtilities/Maths/FusedOperation.h"
#include "ITCUtilities/Maths/Logarithm.h"
#include "ITCUtilities/Maths/Power.h"
#include "ITCUtilities/Maths/Sine.h"
#include "ITCUtilities/Random/PolarFactor.h"
#include "ITCWaveforms/PowerGains.h"
#include "ITCWaveforms/SineFormula.h"
#include "Oracle.h"

namespace maths_test {
namespace {

constexpr uint64_t kHard = uint64_t{1} << 53;

Oracle oracle;
std::mt19937_64 source(1);
int64_t misrounded = 0;

int32_t AnyMagnitude() {
    const auto value = static_cast<int32_t>(source());
    return value >> (source() % 31);
}
double AnyDouble() { return std::bit_cast<double>(source()); }

void Finish(const Tally& tally) {
    tally.Print();
    misrounded += tally.misrounded;
}

void HoldSine(Tally& tally, double x) { tally.Hold(corvantis::Sine(x), oracle.Sine(x), x); }
void HoldLogarithm(Tally& tally, double x) {
    tally.Hold(corvantis::Logarithm(x), oracle.Logarithm(x), x);
}
void HoldPower(Tally& tally, double base, int32_t n) {
    tally.Hold(corvantis::Power(base, n), oracle.Power(base, n), base, n);
}

void ScanSine(Tally& tally, double x) {
    const auto undecided = [x](uint64_t units) { return !corvantis::SineInWords<2>(x, units); };
    if (!undecided(kHard)) return;
    tally.Rank(undecided, x);
    HoldSine(tally, x);
}
void ScanLogarithm(Tally& tally, double x) {
    const auto undecided = [x](uint64_t units) {
        return !corvantis::LogarithmInWords<2>(x, units);
    };
    if (!undecided(kHard)) return;
    tally.Rank(undecided, x);
    HoldLogarithm(tally, x);
}
void ScanPower(Tally& tally, double base, int32_t n) {
    const auto factors = static_cast<uint64_t>(std::abs(int64_t{n})) + 1;
    const auto undecided = [=](uint64_t units) {
        return !corvantis::PowerInWords<2>(base, n, units / factors);
    };
    if (!undecided(kHard)) return;
    tally.Rank(undecided, base, n);
    HoldPower(tally, base, n);
}

// Whether a guard of twice the library's would leave this factor or gain to the function.
bool IsGuarded(double value, double guard) {
    return static_cast<float>(value - 2 * guard * value) ==
           static_cast<float>(value + 2 * guard * value);
}

void Sines(int64_t count) {
    Tally phases{"sine, phases of stimuli"}, guarded{"sine, beside whole levels"};
    Tally scanned{"sine, hard"}, any{"sine, any double"}, angles{"sine, angles of transforms"};
    for (int64_t i = 0; i < count; ++i) {
        const corvantis::SineFormula formula(AnyMagnitude(), 0, AnyMagnitude(), AnyMagnitude());
        HoldSine(phases, formula.Phase(AnyMagnitude()));
        HoldSine(any, AnyDouble());
    }
    for (int64_t i = 0; i < 100 * count;) {
        const corvantis::SineFormula formula(30000, 0, 5 + AnyMagnitude() % 100000, 50);
        for (int32_t k = 1 + static_cast<int32_t>(source() % 1000000), end = k + 1000; k < end;
             ++k, ++i) {
            const double x = formula.Phase(k);
            if (!(std::abs(x) >= 0x1p-27) || std::isinf(x)) continue;
            ScanSine(scanned, x);
            const double level = formula.amplitude * corvantis::Sine(x);
            if (std::abs(level - std::nearbyint(level)) < 1e-6) HoldSine(guarded, x);
        }
    }
    for (int64_t half = 1; half < int64_t{1} << 32; half *= 2) {
        for (const double theta :
             {6.283184 / (2.0 * double(half)), -6.283184 / (2.0 * double(half))}) {
            HoldSine(angles, theta);
            HoldSine(angles, 0.5 * theta);
        }
    }
    for (const Tally& tally : {phases, guarded, scanned, any, angles}) Finish(tally);
}

void Logarithms(int64_t count) {
    Tally guarded{"logarithm, what the guard leaves"}, squares{"logarithm, squared distances"};
    Tally scanned{"logarithm, hard"}, any{"logarithm, any double"}, ones{"logarithm, near 1"};
    const auto floats = static_cast<uint64_t>(335544320);
    const uint64_t step = std::max<uint64_t>(1, floats / static_cast<uint64_t>(100 * count));
    for (uint64_t i = 1 + source() % step; i < floats; i += step) {
        const auto square = std::bit_cast<float>(static_cast<uint32_t>(0x3F800000 - i));
        const double x = square;
        if (!IsGuarded(std::sqrt(-2.0 * corvantis::Logarithm(x) / x), corvantis::kPolarGuard))
            HoldLogarithm(guarded, x);
    }
    for (int64_t i = 0; i < count; ++i) {
        HoldLogarithm(squares,
                      std::bit_cast<float>(static_cast<uint32_t>(0x3F800000 - source() % floats)));
        HoldLogarithm(any, std::abs(AnyDouble()));
        HoldLogarithm(ones, 1.0 + std::ldexp(static_cast<double>(static_cast<int64_t>(source())),
                                             -65 - static_cast<int>(source() % 51)));
    }
    for (int64_t i = 0; i < 100 * count; ++i)
        ScanLogarithm(scanned, std::ldexp(static_cast<double>(source() >> 11),
                                          -53 - static_cast<int>(source() % 40)));
    for (const Tally& tally : {guarded, squares, scanned, any, ones}) Finish(tally);
}

void Powers(int64_t count) {
    Tally guarded{"power, what the guard leaves"}, bases{"power, bases of filters"};
    Tally scanned{"power, hard"}, any{"power, any double"}, whole{"power, whole and small"};
    const auto floats = static_cast<uint64_t>(335544320);
    const uint64_t step = std::max<uint64_t>(1, floats / static_cast<uint64_t>(25 * count));
    const auto base = [](uint64_t i) {
        return double{std::bit_cast<float>(static_cast<uint32_t>(0x3F800000 - i))};
    };
    for (uint64_t i = 1 + source() % step; i < floats; i += step) {
        for (const int32_t n : {1, 2, 3, 4})
            if (!IsGuarded(corvantis::Power(base(i), n), corvantis::kPowerGuard))
                HoldPower(guarded, base(i), n);
    }
    for (int64_t i = 0; i < count; ++i) {
        HoldPower(bases, base(source() % (uint64_t{1} << (source() % 28))), AnyMagnitude());
        HoldPower(any, AnyDouble(), AnyMagnitude());
        // Ties and what lies between them, among the denormals as well.
        const int32_t n = 1 + static_cast<int32_t>(source() % 12);
        const int place = source() % 2 == 0 ? -(1074 + static_cast<int>(source() % 8)) / n
                                            : static_cast<int>(source() % 100) - 50;
        HoldPower(whole, std::ldexp(static_cast<double>(source() % 1000), place),
                  source() % 4 == 0 ? -n : n);
    }
    for (int64_t i = 0; i < 25 * count; ++i) {
        const double x = std::ldexp(static_cast<double>((source() >> 11) | 1), -53);
        for (const int32_t n : {3, 4, 7, -1}) ScanPower(scanned, x, n);
    }
    for (const Tally& tally : {guarded, bases, scanned, any, whole}) Finish(tally);
}

// A number with some of its last bits 0, so that results lie on boundaries.
template <class Number, class Bits>
Number Short(Bits bits) {
    return std::bit_cast<Number>(static_cast<Bits>(bits >> (source() % (6 * sizeof(Bits)))
                                                               << (source() % (6 * sizeof(Bits)))));
}

void FusedSums(int64_t count) {
    Tally whole{"fused, in words"}, single{"fused, single"},
        chosen{"fused, as the library chooses"};
    for (int64_t i = 0; i < count; ++i) {
        const double a = Short<double>(source()), b = Short<double>(source());
        const double beside = std::ldexp(a * b, static_cast<int>(source() % 130) - 65);
        for (const double c :
             {Short<double>(source()), -(a * b), beside, -beside * (1 + 0x1p-52)}) {
            const double expected = oracle.Fused(a, b, c);
            whole.Hold(corvantis::FusedInWords(a, b, c), expected, c);
            chosen.Hold(corvantis::FusedSum(a, b, c), expected, c);
        }
        const auto d = Short<float>(static_cast<uint32_t>(source()));
        const auto e = Short<float>(static_cast<uint32_t>(source()));
        const auto next =
            static_cast<float>(std::ldexp(double{d} * e, static_cast<int>(source() % 60) - 30));
        for (const float f : {Short<float>(static_cast<uint32_t>(source())), -d * e, next, -next})
            single.Hold(corvantis::FusedByRoundingToOdd(d, e, f), oracle.FusedSingle(d, e, f),
                        double{f});
    }
    for (const Tally& tally : {whole, single, chosen}) Finish(tally);
}

}  // namespace
}  // namespace maths_test

int main(int argc, char** argv) {
    const int64_t count = 1000 * (argc > 1 ? std::atoll(argv[1]) : 100);
    maths_test::Sines(count);
    maths_test::Logarithms(count);
    maths_test::Powers(count);
    maths_test::FusedSums(count);
    return maths_test::misrounded == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
