// The exported Fourier transform.
#include "Corvantis.h"
#include "ITCUtilities/Fourier/FourierTransform.h"

void ITCfft(int32_t isign, uint32_t nn, float* data) {
    corvantis::TransformFourier(isign, nn, data);
}
