// The transform as published, with a 2 pi of its own and an inverse that is normalised.
#include <cmath>
#include <utility>

#include "reference/Definitions.h"

namespace definition {

void Fourier(int32_t isign, uint32_t points, float* data) {
    const size_t n = size_t{2} * points;
    for (size_t i = 1, j = 1; i < n; i += 2) {
        if (j > i) {
            std::swap(data[j], data[i]);
            std::swap(data[j + 1], data[i + 1]);
        }
        size_t m = n / 2;
        for (; m > 1 && j > m; m /= 2) j -= m;
        j += m;
    }
    for (size_t mmax = 2; mmax < n; mmax *= 2) {
        const double theta = 6.283184 / (static_cast<double>(mmax) * isign);
        const double half = std::sin(0.5 * theta);
        const double wpr = -2.0 * half * half;
        const double wpi = std::sin(theta);
        double wr = 1.0;
        double wi = 0.0;
        for (size_t m = 1; m < mmax; m += 2) {
            for (size_t i = m; i <= n; i += 2 * mmax) {
                const size_t j = i + mmax;
                const auto real = static_cast<float>(wr * data[j] - wi * data[j + 1]);
                const auto imaginary = static_cast<float>(wr * data[j + 1] + wi * data[j]);
                data[j] = data[i] - real;
                data[j + 1] = data[i + 1] - imaginary;
                data[i] += real;
                data[i + 1] += imaginary;
            }
            const double previous = wr;
            wr = wr + (wr * wpr - wi * wpi);
            wi = wi + (wi * wpr + previous * wpi);
        }
    }
    if (isign != -1) return;
    for (size_t i = 1; i <= n; ++i) data[i] /= static_cast<float>(points);
}

}  // namespace definition
