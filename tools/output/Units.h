// From converter counts to volts and to the amplifier's units, by one formula for each direction.
//
//   response = counts / inputScale / ampGain       in inputUnits,  ampGain in volts per unit
//   stimulus = counts / outputScale * convFactor   in outputUnits, convFactor in units per volt
//
// The header's arrays are indexed by the sequence entry, as its stimulus types are.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "Corvantis.h"

namespace corvantis::tool {

struct Conversion {
    double countsPerVolt = 1.0;
    double gain = 1.0;
    double factor = 1.0;
    std::string unit;
    bool isWord = false;
    double operator()(int16_t counts) const {
        // The digital port's samples are 16 lines, not a potential.
        return isWord ? static_cast<uint16_t>(counts) : Level(counts);
    }
    // Of a parameter, which need not fit the converter.
    double Level(double counts) const { return counts / countsPerVolt / gain * factor; }
};

// Of the digital port.
Conversion Words();

// Volts, or words of the digital port; counts of a file whose scale is no number above 0 stay
// counts.
Conversion ResponseInVolts(const ITCFileHeader& file, const ITCEpochHeader& epoch, size_t entry);
Conversion StimulusInVolts(const ITCFileHeader& file, const ITCEpochHeader& epoch, size_t entry);

// In the entry's units, or words; volts where its gain or factor is 0 or not finite, or its unit is
// empty.
Conversion ResponseInUnits(const ITCFileHeader& file, const ITCEpochHeader& epoch, size_t entry);
Conversion StimulusInUnits(const ITCFileHeader& file, const ITCEpochHeader& epoch, size_t entry);

// The two formulas with an entry's own numbers, for people.
std::string ResponseFormula(const ITCFileHeader& file, const ITCEpochHeader& epoch, size_t entry);
std::string StimulusFormula(const ITCFileHeader& file, const ITCEpochHeader& epoch, size_t entry);

}  // namespace corvantis::tool
