// a * b + c rounded once, in double precision and with whole numbers.
#include "ITCUtilities/Maths/FusedOperation.h"

#include <algorithm>
#include <utility>

#include "ITCUtilities/Maths/Rounding.h"

namespace corvantis {
namespace {

using Sum = Fraction<4>;

// fraction * 2^exponent.
struct Term {
    bool negative;
    int32_t exponent;
    Sum fraction;
};

// Both leave the first bit of the sum free.
Term ProductOf(const DoubleParts& a, const DoubleParts& b) {
    const WordPair product = MultiplyWords(a.significand, b.significand);
    return {a.negative != b.negative, a.exponent + b.exponent + 128, {product.high, product.low}};
}

Term AddendOf(const DoubleParts& c) { return {c.negative, c.exponent + 64, {c.significand}}; }

// The term with another, larger exponent.
void Lower(Term& term, int32_t exponent) {
    const auto bits = static_cast<size_t>(std::min(exponent - term.exponent, 256));
    const Sum shifted = ShiftedRight(term.fraction, bits);
    const bool cut = ShiftedLeft(shifted, bits) != term.fraction;
    term.fraction = shifted;
    term.fraction[3] |= cut ? 1 : 0;
    term.exponent = exponent;
}

}  // namespace

double FusedInWords(double a, double b, double c) {
    // Without anything to add, or nothing but c, one operation rounds all there is.
    if (!std::isfinite(a) || !std::isfinite(b) || a == 0.0 || b == 0.0) return a * b + c;
    if (!std::isfinite(c)) return c + c;
    if (c == 0.0) return a * b;
    Term product = ProductOf(PartsOf(a), PartsOf(b));
    Term addend = AddendOf(PartsOf(c));
    const int32_t exponent = std::max(product.exponent, addend.exponent);
    Lower(product, exponent);
    Lower(addend, exponent);
    if (product.negative == addend.negative) {
        AddTo(product.fraction, addend.fraction);
        return WithSign(Rounded(product.fraction, exponent), product.negative);
    }
    if (product.fraction == addend.fraction) return 0.0;
    if (product.fraction < addend.fraction) std::swap(product, addend);
    SubtractFrom(product.fraction, addend.fraction);
    return WithSign(Rounded(product.fraction, exponent), product.negative);
}

#if defined(CORVANTIS_HAS_CLONES)
[[gnu::target("fma")]] double FusedByInstruction(double a, double b, double c) {
    return __builtin_fma(a, b, c);
}
#else
double FusedByInstruction(double a, double b, double c) {
    return HasFusedInstruction() ? __builtin_fma(a, b, c) : FusedInWords(a, b, c);
}
#endif

}  // namespace corvantis
