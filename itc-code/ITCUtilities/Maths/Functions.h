// The functions that recorded stimuli rest on, rounded correctly: to nearest, ties to even, for
// every argument. So they are the same on every host, whatever its C library; each file behind
// this one opens with its method and its error bound.
#pragma once

#include <cstdint>

namespace corvantis {

double Sine(double x);
// The natural logarithm.
double Logarithm(double x);
double Power(double base, int32_t exponent);

}  // namespace corvantis
