// The twiddle factors of one stage of the Fourier transform.
#pragma once

#include <cstddef>
#include <cstdint>

#include "ITCUtilities/FunctionClones.h"
#include "ITCUtilities/Maths/Functions.h"

namespace corvantis {

// The recurrence's rounding errors are part of every recorded noise, so the factors must be taken
// one after the other.
CORVANTIS_INLINE void AdvanceTwiddle(double& real, double& imaginary, double stepReal,
                                     double stepImaginary) {
    const double previous = real;
    real = real + (real * stepReal - imaginary * stepImaginary);
    imaginary = imaginary + (imaginary * stepReal + previous * stepImaginary);
}

struct Twiddle {
    // For the stage that combines transforms of `half` points each. 2 pi is the number that
    // recorded noise was made with; an exact one would change its samples.
    Twiddle(int32_t isign, size_t half) {
        const double theta = 6.283184 / (2.0 * static_cast<double>(half) * isign);
        const double sine = Sine(0.5 * theta);
        stepReal = -2.0 * sine * sine;
        stepImaginary = Sine(theta);
    }
    void Advance() { AdvanceTwiddle(real, imaginary, stepReal, stepImaginary); }
    double real = 1.0;
    double imaginary = 0.0;
    double stepReal;
    double stepImaginary;
};

}  // namespace corvantis
