// The in-place complex Fourier transform behind the filtered noise.
#include <bit>
#include <cmath>
#include <cstddef>
#include <utility>

#include "Corvantis.h"

namespace corvantis {
namespace {

// 2 pi as the recorded noise was made with; an exact 2 pi would change its samples.
constexpr double kTwoPi = 6.283184;

// Arrays count from 1, as in the published form: element 0 belongs to the caller.
void ReverseBits(size_t n, float* data) {
    size_t j = 1;
    for (size_t i = 1; i < n; i += 2) {
        if (j > i) {
            std::swap(data[j], data[i]);
            std::swap(data[j + 1], data[i + 1]);
        }
        size_t m = n / 2;
        while (m > 1 && j > m) {
            j -= m;
            m /= 2;
        }
        j += m;
    }
}

// The twiddle factor of one stage, advanced by a recurrence in double precision.
struct Twiddle {
    explicit Twiddle(double theta)
        : stepReal(-2.0 * std::sin(0.5 * theta) * std::sin(0.5 * theta)),
          stepImaginary(std::sin(theta)) {}
    void Advance() {
        const double previous = real;
        real = real + (real * stepReal - imaginary * stepImaginary);
        imaginary = imaginary + (imaginary * stepReal + previous * stepImaginary);
    }
    double stepReal;
    double stepImaginary;
    double real = 1.0;
    double imaginary = 0.0;
};

void Butterfly(const Twiddle& twiddle, float* even, float* odd) {
    const float real = static_cast<float>(twiddle.real * odd[0] - twiddle.imaginary * odd[1]);
    const float imaginary = static_cast<float>(twiddle.real * odd[1] + twiddle.imaginary * odd[0]);
    odd[0] = even[0] - real;
    odd[1] = even[1] - imaginary;
    even[0] = even[0] + real;
    even[1] = even[1] + imaginary;
}

void CombineStage(int32_t isign, size_t mmax, size_t n, float* data) {
    Twiddle twiddle(kTwoPi / (static_cast<double>(mmax) * isign));
    for (size_t m = 1; m < mmax; m += 2) {
        for (size_t i = m; i <= n; i += 2 * mmax) Butterfly(twiddle, data + i, data + i + mmax);
        twiddle.Advance();
    }
}

}  // namespace
}  // namespace corvantis

void ITCfft(int32_t isign, uint32_t nn, float* data) {
    if (!std::has_single_bit(nn)) return;
    const size_t n = 2 * static_cast<size_t>(nn);
    corvantis::ReverseBits(n, data);
    for (size_t mmax = 2; mmax < n; mmax *= 2) corvantis::CombineStage(isign, mmax, n, data);
    if (isign != -1) return;
    for (size_t i = 1; i <= n; ++i) data[i] /= static_cast<float>(nn);
}
