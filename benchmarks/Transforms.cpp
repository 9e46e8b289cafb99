// The Fourier transform; its limit is FFTW's measured plan in single precision, in place.
#include <fftw3.h>

#include <memory>
#include <vector>

#include "Corvantis.h"
#include "Jobs.h"
#include "reference/Definitions.h"

namespace bench {
namespace {

// Forward and inverse in turn, so that the values stay within their range.
template <class Transform>
std::function<void()> InTurn(uint32_t points, Transform transform) {
    auto data = std::make_shared<std::vector<float>>(2 * size_t{points} + 1);
    for (size_t k = 1; k < data->size(); ++k) (*data)[k] = static_cast<float>(k % 1000) - 499.5F;
    auto direction = std::make_shared<int32_t>(1);
    return [=] {
        transform(*direction, points, data->data());
        *direction = -*direction;
    };
}

std::function<void()> Limit(uint32_t points) {
    fftwf_complex* data = fftwf_alloc_complex(points);
    const int size = static_cast<int>(points);
    fftwf_plan plan = fftwf_plan_dft_1d(size, data, data, FFTW_FORWARD, FFTW_MEASURE);
    for (uint32_t k = 0; k < points; ++k) data[k][0] = data[k][1] = 0.0F;
    return [=] { fftwf_execute(plan); };
}

}  // namespace

void AddTransformJobs(Jobs& jobs) {
    for (const uint32_t points : {1024u, 65536u, 1048576u}) {
        jobs.push_back({"FFT", points, InTurn(points, definition::Fourier), InTurn(points, ITCfft),
                        Limit(points)});
    }
}

}  // namespace bench
