// Which of the formulas applies to an entry, and applying it.
#include "units/Scale.h"

#include <cmath>

#include "ITCFileIO/SequenceWords.h"
#include "ITCUtilities/FunctionClones.h"
#include "text/Text.h"
#include "text/Words.h"

namespace corvantis::reading {
namespace {

bool IsUsable(float factor) { return std::isfinite(factor) && factor != 0.0F; }

Scale Words() {
    return {.unit = "word", .formula = "the 16-bit word of the digital port", .isWord = true};
}

struct Factor {
    const char* name;
    float value;
};

// What is left without a factor or a unit: volts, or counts where even those are unknown.
Scale InVolts(const Factor& scale, const Factor& factor) {
    if (!IsUsable(scale.value)) {
        return {.unit = "counts",
                .formula = Say("counts, because ", scale.name, " is ", scale.value)};
    }
    const std::string missing =
        IsUsable(factor.value) ? "the unit has no name" : Say(factor.name, " is ", factor.value);
    return {.unit = "V",
            .formula = Say("counts / ", scale.value, " in V, because ", missing),
            .countsPerVolt = double{scale.value}};
}

bool HasUnits(const Factor& scale, const Factor& factor, const std::string& unit) {
    return IsUsable(scale.value) && IsUsable(factor.value) && !unit.empty();
}

// A full unit name has no terminator.
std::string UnitName(const char (&name)[ITC_UNITS_LENGTH]) {
    return DisplayText({name, ITC_UNITS_LENGTH});
}

CORVANTIS_CLONES void ConvertRun(const int16_t* __restrict counts, double* __restrict values,
                                 size_t count, double countsPerVolt, double gain, double factor) {
    for (size_t i = 0; i < count; ++i) {
        values[i] = InUnits(counts[i], countsPerVolt, gain, factor);
    }
}

}  // namespace

Scale ResponseScale(const ITCFileHeader& file, const ITCEpochHeader& epoch, size_t entry) {
    if (IsDigitalInput(epoch.channelSequence[entry])) return Words();
    const Factor scale = {"inputScale", file.inputScale}, gain = {"ampGain", epoch.ampGain[entry]};
    const std::string unit = UnitName(epoch.inputUnits[entry]);
    if (!HasUnits(scale, gain, unit)) return InVolts(scale, gain);
    return {.unit = unit,
            .formula = Say("counts / ", scale.value, " / ", gain.value, " in ", unit),
            .countsPerVolt = double{scale.value},
            .gain = double{gain.value},
            .meaning = MeaningOf(unit)};
}

Scale StimulusScale(const ITCFileHeader& file, const ITCEpochHeader& epoch, size_t entry) {
    if (IsDigitalOutput(epoch.channelSequence[entry])) return Words();
    const Factor scale = {"outputScale", file.outputScale};
    const Factor factor = {"convFactor", epoch.convFactor[entry]};
    const std::string unit = UnitName(epoch.outputUnits[entry]);
    if (!HasUnits(scale, factor, unit)) return InVolts(scale, factor);
    return {.unit = unit,
            .formula = Say("counts / ", scale.value, " * ", factor.value, " in ", unit),
            .countsPerVolt = double{scale.value},
            .factor = double{factor.value},
            .meaning = MeaningOf(unit)};
}

Scale ConductanceScale() {
    return {.unit = "nS", .formula = "as stored, in nS", .meaning = MeaningOf("nS")};
}

Scale ScaleOf(const ITCFileHeader& file, const ITCEpochHeader& epoch, size_t entry,
              int32_t direction) {
    if (direction == CORVANTIS_CONDUCTANCE) return ConductanceScale();
    return direction == CORVANTIS_RESPONSE ? ResponseScale(file, epoch, entry)
                                           : StimulusScale(file, epoch, entry);
}

const char* AxisNameOf(int32_t direction, std::string_view unit) {
    // Volts alone are what is known at the converter, whatever it stands for.
    const int32_t quantity = unit == "V" ? CORVANTIS_OTHER : MeaningOf(unit).quantity;
    const bool isResponse = direction == CORVANTIS_RESPONSE;
    if (direction == CORVANTIS_CONDUCTANCE) return "Conductance";
    if (quantity == CORVANTIS_POTENTIAL)
        return isResponse ? "Membrane Potential" : "Command Potential";
    if (quantity == CORVANTIS_CURRENT) return isResponse ? "Clamp Current" : "Applied Current";
    return isResponse ? "Response" : "Stimulus";
}

void Convert(const Scale& scale, std::span<const int16_t> counts, double* values, int64_t stride) {
    if (scale.isWord) {
        for (const int16_t count : counts) {
            *values = static_cast<uint16_t>(count);
            values += stride;
        }
    } else if (stride == 1) {
        ConvertRun(counts.data(), values, counts.size(), scale.countsPerVolt, scale.gain,
                   scale.factor);
    } else {
        for (const int16_t count : counts) {
            *values = InUnits(count, scale);
            values += stride;
        }
    }
}

}  // namespace corvantis::reading
