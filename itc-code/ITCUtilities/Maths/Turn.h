// Sine and cosine together, good enough for what is guarded: off by less than 4 * 2^-53. The angle
// is reduced as for the exact sine and cut to a double, which is off by 2^-53; the series, to the
// power 18, leave out less than 2^-59, round their small part by less than 1.5 * 2^-53, and are
// rounded by half that at the end.
#pragma once

namespace corvantis {

struct Turn {
    double sine;
    double cosine;
};

Turn TurnBy(double phase);

}  // namespace corvantis
