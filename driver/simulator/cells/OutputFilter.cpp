// The modes of the filters and their advance.
#include "simulator/cells/OutputFilter.h"

#include <cmath>
#include <numbers>

namespace itc18 {
namespace {

constexpr std::array<std::complex<double>, 2> kBesselPoles{
    {{-0.9952087643503, 1.2571057394546}, {-1.3700678305514, 0.4102497174799}}};

// Of the pole, in the filter of gain 1 with these poles and their conjugates.
std::complex<double> BesselResidue(size_t which) {
    const auto pole = kBesselPoles[which], other = kBesselPoles[1 - which];
    const double gain = std::norm(pole) * std::norm(other);
    return gain / ((pole - std::conj(pole)) * (pole - other) * (pole - std::conj(other)));
}

}  // namespace

OutputFilter::OutputFilter(AmplifierFilter kind, double cutoff) {
    const double scale = 2 * std::numbers::pi * cutoff / 1000;
    if (kind == AmplifierFilter::kLowPass) {
        modes = 1;
        poles[0] = -scale;
        residues[0] = scale;
    } else if (kind == AmplifierFilter::kBessel) {
        modes = 2;
        weight = 2;
        for (size_t mode = 0; mode < modes; ++mode) {
            poles[mode] = scale * kBesselPoles[mode];
            residues[mode] = scale * BesselResidue(mode);
        }
    }
}

void OutputFilter::Settle(double input) {
    for (size_t mode = 0; mode < modes; ++mode) state[mode] = -input * residues[mode] / poles[mode];
}

void OutputFilter::Prepare(double milliseconds) {
    duration = milliseconds;
    for (size_t mode = 0; mode < modes; ++mode) {
        left[mode] = std::exp(poles[mode] * milliseconds);
        gain[mode] = (left[mode] - 1.0) / poles[mode] * residues[mode];
    }
}

void OutputFilter::Advance(double input, double milliseconds) {
    if (milliseconds != duration) Prepare(milliseconds);
    for (size_t mode = 0; mode < modes; ++mode)
        state[mode] = left[mode] * state[mode] + gain[mode] * input;
}

void OutputFilter::AddImpulse(double area) {
    for (size_t mode = 0; mode < modes; ++mode) state[mode] += area * residues[mode];
}

double OutputFilter::Output() const {
    double sum = 0;
    for (size_t mode = 0; mode < modes; ++mode) sum += weight * state[mode].real();
    return sum;
}

}  // namespace itc18
