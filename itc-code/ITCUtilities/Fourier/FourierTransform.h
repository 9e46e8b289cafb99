// The in-place complex Fourier transform behind the filtered noise.
#pragma once

#include <cstdint>

namespace corvantis {

// As the exported ITCfft, which documents it.
void TransformFourier(int32_t isign, uint32_t nn, float* data);

}  // namespace corvantis
