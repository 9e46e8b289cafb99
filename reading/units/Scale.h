// From converter counts to the units of an entry, by one formula for each direction.
//
//   response = counts / inputScale / ampGain       in inputUnits,  ampGain in volts per unit
//   stimulus = counts / outputScale * convFactor   in outputUnits, convFactor in units per volt
//
// The header's arrays are indexed by the sequence entry, as its stimulus types are.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "Corvantis.h"
#include "CorvantisReading.h"
#include "units/UnitMeaning.h"

namespace corvantis::reading {

struct Scale {
    std::string unit;
    std::string formula;
    double countsPerVolt = 1.0;
    double gain = 1.0;
    double factor = 1.0;
    bool isWord = false;
    UnitMeaning meaning = {};  // only of an entry's own unit
};

// The formula, in double precision and in this order.
constexpr double InUnits(double counts, double countsPerVolt, double gain, double factor) {
    return counts / countsPerVolt / gain * factor;
}
inline double InUnits(double counts, const Scale& scale) {
    return InUnits(counts, scale.countsPerVolt, scale.gain, scale.factor);
}

Scale ResponseScale(const ITCFileHeader& file, const ITCEpochHeader& epoch, size_t entry);
Scale StimulusScale(const ITCFileHeader& file, const ITCEpochHeader& epoch, size_t entry);
Scale ConductanceScale();
// By one of the interface's directions.
Scale ScaleOf(const ITCFileHeader& file, const ITCEpochHeader& epoch, size_t entry,
              int32_t direction);

// What an axis of such values is called: a constant.
const char* AxisNameOf(int32_t direction, std::string_view unit);

// values[i * stride] of each count.
void Convert(const Scale& scale, std::span<const int16_t> counts, double* values, int64_t stride);

}  // namespace corvantis::reading
