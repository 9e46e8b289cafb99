// The in-place complex Fourier transform behind the filtered noise.
#include "ITCUtilities/Fourier/FourierTransform.h"

#include <bit>
#include <cstddef>
#include <utility>

#include "ITCUtilities/Fourier/BlockedTransform.h"
#include "ITCUtilities/Fourier/Twiddle.h"

namespace corvantis {
namespace {

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

void Butterfly(const Twiddle& twiddle, float* even, float* odd) {
    const float real = static_cast<float>(twiddle.real * odd[0] - twiddle.imaginary * odd[1]);
    const float imaginary = static_cast<float>(twiddle.real * odd[1] + twiddle.imaginary * odd[0]);
    odd[0] = even[0] - real;
    odd[1] = even[1] - imaginary;
    even[0] = even[0] + real;
    even[1] = even[1] + imaginary;
}

void CombineStage(int32_t isign, size_t mmax, size_t n, float* data) {
    Twiddle twiddle(isign, mmax / 2);
    for (size_t m = 1; m < mmax; m += 2) {
        for (size_t i = m; i <= n; i += 2 * mmax) Butterfly(twiddle, data + i, data + i + mmax);
        twiddle.Advance();
    }
}

void Transform(int32_t isign, uint32_t nn, float* data) {
    const size_t n = 2 * static_cast<size_t>(nn);
    ReverseBits(n, data);
    for (size_t mmax = 2; mmax < n; mmax *= 2) CombineStage(isign, mmax, n, data);
    if (isign != -1) return;
    for (size_t i = 1; i <= n; ++i) data[i] /= static_cast<float>(nn);
}

}  // namespace

void TransformFourier(int32_t isign, uint32_t nn, float* data) {
    if (!std::has_single_bit(nn)) return;
    if (nn >= kSmallestBlockedTransform && (isign == 1 || isign == -1)) {
        TransformInBlocks(isign == 1, nn, data + 1);
    } else {
        Transform(isign, nn, data);
    }
}

}  // namespace corvantis
