// Conversions of counts, and their formulas as text.
#include "output/Units.h"

#include <fmt/core.h>

#include <cmath>

#include "output/Text.h"

namespace corvantis::tool {
namespace {

// Bits of a sequence word that select the digital port in place of an analogue channel.
constexpr uint32_t kDigitalInput = 0x400;
constexpr uint32_t kDigitalOutput = 0x2000;

bool IsUsable(float factor) { return std::isfinite(factor) && factor != 0.0F; }

Conversion InVolts(float countsPerVolt) {
    if (!IsUsable(countsPerVolt)) return {.unit = "counts"};
    return {.countsPerVolt = static_cast<double>(countsPerVolt), .unit = "V"};
}

// A full unit name has no terminator.
std::string UnitName(const char (&name)[ITC_UNITS_LENGTH]) {
    return DisplayText({name, ITC_UNITS_LENGTH});
}

// In volts, unless unit and factor are there.
bool HasUnits(const Conversion& volts, const std::string& unit, float factor) {
    return !volts.isWord && volts.unit == "V" && !unit.empty() && IsUsable(factor);
}

}  // namespace

Conversion Words() { return {.unit = "word", .isWord = true}; }

Conversion ResponseInVolts(const ITCFileHeader& file, const ITCEpochHeader& epoch, size_t entry) {
    if ((epoch.channelSequence[entry] & kDigitalInput) != 0) return Words();
    return InVolts(file.inputScale);
}

Conversion StimulusInVolts(const ITCFileHeader& file, const ITCEpochHeader& epoch, size_t entry) {
    if ((epoch.channelSequence[entry] & kDigitalOutput) != 0) return Words();
    return InVolts(file.outputScale);
}

Conversion ResponseInUnits(const ITCFileHeader& file, const ITCEpochHeader& epoch, size_t entry) {
    Conversion conversion = ResponseInVolts(file, epoch, entry);
    const std::string unit = UnitName(epoch.inputUnits[entry]);
    const float gain = epoch.ampGain[entry];
    if (!HasUnits(conversion, unit, gain)) return conversion;
    conversion.gain = static_cast<double>(gain);
    conversion.unit = unit;
    return conversion;
}

Conversion StimulusInUnits(const ITCFileHeader& file, const ITCEpochHeader& epoch, size_t entry) {
    Conversion conversion = StimulusInVolts(file, epoch, entry);
    const std::string unit = UnitName(epoch.outputUnits[entry]);
    const float factor = epoch.convFactor[entry];
    if (!HasUnits(conversion, unit, factor)) return conversion;
    conversion.factor = static_cast<double>(factor);
    conversion.unit = unit;
    return conversion;
}

std::string ResponseFormula(const ITCFileHeader& file, const ITCEpochHeader& epoch, size_t entry) {
    const Conversion conversion = ResponseInUnits(file, epoch, entry);
    if (conversion.isWord) return "the 16-bit word of the digital port";
    if (conversion.unit == "counts") return "counts (the file has no scale)";
    const std::string volts = fmt::format("counts / {}", file.inputScale);
    if (conversion.gain == 1.0) {
        return fmt::format("{} {} (ampGain {})", volts, conversion.unit, epoch.ampGain[entry]);
    }
    return fmt::format("{} / {} {}", volts, epoch.ampGain[entry], conversion.unit);
}

std::string StimulusFormula(const ITCFileHeader& file, const ITCEpochHeader& epoch, size_t entry) {
    const Conversion conversion = StimulusInUnits(file, epoch, entry);
    if (conversion.isWord) return "the 16-bit word of the digital port";
    if (conversion.unit == "counts") return "counts (the file has no scale)";
    const std::string volts = fmt::format("counts / {}", file.outputScale);
    if (conversion.factor == 1.0) {
        return fmt::format("{} {} (convFactor {})", volts, conversion.unit,
                           epoch.convFactor[entry]);
    }
    return fmt::format("{} * {} {}", volts, epoch.convFactor[entry], conversion.unit);
}

}  // namespace corvantis::tool
