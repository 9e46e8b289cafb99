// The amplifier's low-pass filter, exact for an input that stands still during a step.
//
// The filter is the sum of its modes, each of which decays at its pole. The poles of the Bessel
// filter of fourth order, -3 dB at 1 rad/s, are in every table of filters, for example in
// A. I. Zverev, "Handbook of Filter Synthesis", Wiley (1967).
#pragma once

#include <array>
#include <complex>
#include <cstddef>

#include "simulator/cells/PreparationSettings.h"

namespace itc18 {

class OutputFilter {
  public:
    // `cutoff` [Hz], where the gain is -3 dB. Without a filter the input is the output.
    OutputFilter(AmplifierFilter kind, double cutoff);

    bool IsThere() const { return modes > 0; }
    void Settle(double input);
    void Advance(double input, double milliseconds);
    void AddImpulse(double area);  // [input times ms]
    double Output() const;

  private:
    using Mode = std::complex<double>;

    void Prepare(double milliseconds);

    size_t modes = 0;
    double weight = 1;                      // of a mode: 2 of one that stands for a conjugate pair
    std::array<Mode, 2> poles, residues;    // [1/ms]
    std::array<Mode, 2> state, left, gain;  // left and gain over a step of this duration [ms]
    double duration = 0;
};

}  // namespace itc18
