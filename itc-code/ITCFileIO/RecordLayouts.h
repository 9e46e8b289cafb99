// Every record of the data file, described once: its fields in file order with their names, units
// and meanings, and runs of zero bytes. A visitor makes of a description the size, the writer, the
// reader, or the list of fields that programs and documents show.
#pragma once

#include <concepts>
#include <type_traits>

#include "Corvantis.h"

namespace corvantis {

// What people are told of a field; without a unit it is a number as it stands.
struct FieldText {
    const char* name;
    const char* unit;
    const char* meaning;
    bool isUnsigned = false;  // although the field is declared with a sign
    bool isByEntry = false;   // its elements go by the entries of the channel sequence
};

// What there is of each sequence entry.
constexpr FieldText ByEntry(const char* name, const char* unit, const char* meaning) {
    return {name, unit, meaning, false, true};
}

inline constexpr char kCodes[] = "DAC codes";
inline constexpr char kSamples[] = "samples";
inline constexpr char kNoUnit[] = "";

template <class Record, class... Candidates>
concept OneOf = (std::same_as<std::remove_const_t<Record>, Candidates> || ...);

constexpr void Describe(auto& visit, OneOf<ITCFileHeader> auto& r) {
    visit(r.version, {"version", kNoUnit, "format version"});
    visit.Zeros(3);
    visit(r.fileLongA, {"fileLongA", kNoUnit, "spare; kept as it stands"});
    visit(r.fileComment, {"fileComment", kNoUnit, "comment on the whole file, terminated within"});
    visit(r.fileFlagA, {"fileFlagA", kNoUnit, "1; kept as it stands"});
    visit(r.fileFlagB, {"fileFlagB", kNoUnit, "2; kept as it stands"});
    visit.Zeros(2);
    visit(r.inputScale, {"inputScale", "counts/V", "scale of the inputs, 3200"});
    visit(r.outputScale, {"outputScale", "counts/V", "scale of the outputs, 3200"});
    visit(r.pipelineDepth, {"pipelineDepth", kSamples, "the device's pipeline length, 5"});
    visit.Zeros(3);
    visit(r.numEpochs, {"numEpochs", kNoUnit, "epochs in the file"});
    visit(r.epochTablePosition,
          {"epochTablePosition", "bytes", "file offset of the position table, unsigned", true});
    visit(r.offset, {"offset", kNoUnit, "a value for the whole file, kept as given"});
    visit(r.fileFlagC, {"fileFlagC", kNoUnit, "2; kept as it stands"});
    visit(r.fileFlagD, {"fileFlagD", kNoUnit, "1; kept as it stands"});
    visit(r.stmDataFormat, {"stmDataFormat", kNoUnit, "format code of stored stimulus data"});
    visit.Zeros(1);
    visit(r.fileLongB, {"fileLongB", kNoUnit, "spare; kept as it stands"});
    visit.Zeros(24);
}

constexpr void Describe(auto& visit, OneOf<ITCEpochHeader> auto& r) {
    visit(r.epochTime, {"epochTime", kNoUnit, "time of the epoch, as the application counts"});
    visit(r.epochComment, {"epochComment", kNoUnit, "comment on the epoch, terminated within"});
    visit(r.ampGain, ByEntry("ampGain", "V/unit", "amplifier gain of each entry's input"));
    visit(r.ampValue, ByEntry("ampValue", kNoUnit, "second amplifier value of each entry"));
    visit(r.convFactor,
          ByEntry("convFactor", "units/V", "conversion factor of each entry's output"));
    visit(r.ampCode, ByEntry("ampCode", kNoUnit, "amplifier code of each entry"));
    visit(r.acqSettingB, {"acqSettingB", kNoUnit, "second acquisition setting"});
    visit.Zeros(3);
    visit(r.samplingInterval, {"samplingInterval", "µs", "one pass of the sequence"});
    visit(r.epochPoints, {"epochPoints", kSamples, "points of each sequence entry"});
    visit(r.sequenceLength, {"sequenceLength", "entries", "length of the channel sequence"});
    visit(r.channelSequence,
          ByEntry("channelSequence", kNoUnit, "device word of each sequence entry"));
    visit(r.spareChannelBytes, {"spareChannelBytes", kNoUnit, "never set by the library"});
    visit(r.acqSettingA, {"acqSettingA", kNoUnit, "first acquisition setting"});
    visit(r.stimType, ByEntry("stimType", kNoUnit, "stimulus type of each entry"));
    visit(r.outputUnits, ByEntry("outputUnits", kNoUnit, "unit name of each entry's stimulus"));
    visit(r.inputUnits, ByEntry("inputUnits", kNoUnit, "unit name of each entry's response"));
    visit(r.ampMode, ByEntry("ampMode", kNoUnit, "amplifier mode of each entry"));
    visit.Zeros(3);
    visit(r.meanOutput, ByEntry("meanOutput", kCodes, "mean output level of each entry"));
    visit(r.temperature, {"temperature", "°C", "temperature"});
    visit(r.digitalOutput, {"digitalOutput", kNoUnit, "digital output word"});
    visit(r.wavelength, {"wavelength", "nm", "wavelength"});
    visit(r.ndf, ByEntry("ndf", kNoUnit, "neutral density filter of each entry"));
    visit(r.ledSetting, {"ledSetting", kNoUnit, "setting of each LED"});
    visit(r.userValue, {"userValue", kNoUnit, "free values of the experimenter"});
    visit(r.pointsLatency, {"pointsLatency", kSamples, "dynamic-clamp latency"});
    visit.Zeros(22);
}

// The runs before, at and behind a stimulus stand in this order in every record that has them.
constexpr void DescribeRuns(auto& visit, auto& r, const char* points) {
    visit(r.points, {"points", kSamples, points});
    visit(r.tailPoints, {"tailPoints", kSamples, "at the holding level behind it"});
    visit(r.prePoints, {"prePoints", kSamples, "at the holding level before it"});
}

inline constexpr char kSeedMeaning[] = "0 or above reproduces its waveform; below 0 continues";

constexpr void Describe(auto& visit, OneOf<ITCSineParameters> auto& r) {
    visit(r.amplitude, {"amplitude", kCodes, "peak amplitude"});
    visit(r.mean, {"mean", kCodes, "holding level, about which the sine oscillates"});
    visit(r.period, {"period", kSamples, "period of the sine"});
    visit(r.phase, {"phase", kNoUnit, "kept and stored; the calculation does not read it"});
    DescribeRuns(visit, r, "length of the sine");
    visit.Zeros(12);
}

constexpr void Describe(auto& visit, OneOf<ITCNoiseParameters> auto& r) {
    visit(r.amplitude, {"amplitude", kCodes, "standard deviation"});
    visit(r.mean, {"mean", kCodes, "holding level"});
    visit(r.seed, {"seed", kNoUnit, kSeedMeaning});
    DescribeRuns(visit, r, "length of the noise");
    visit(r.smoothingPoints,
          {"smoothingPoints", kSamples, "window of the older method's moving average"});
    visit(r.cutoffFrequency, {"cutoffFrequency", "Hz", "corner of the low-pass filter"});
    visit(r.filterOrder, {"filterOrder", kNoUnit, "cascaded first-order sections of that filter"});
}

constexpr void Describe(auto& visit, OneOf<ITCPulseParameters> auto& r) {
    visit(r.amplitude, {"amplitude", kCodes, "added to the holding level during the pulse"});
    visit(r.mean, {"mean", kCodes, "holding level"});
    DescribeRuns(visit, r, "length of the pulse");
    visit.Zeros(12);
}

constexpr void Describe(auto& visit, OneOf<ITCRampParameters> auto& r) {
    visit(r.amplitude, {"amplitude", kCodes, "rise over the points"});
    visit(r.mean, {"mean", kCodes, "holding level, from which the ramp starts"});
    DescribeRuns(visit, r, "length of the ramp");
    visit.Zeros(12);
}

constexpr void Describe(auto& visit, OneOf<ITCGenericParameters> auto& r) {
    visit(r.amplitude, {"amplitude", kCodes, "as the application means it"});
    visit(r.mean, {"mean", kCodes, "holding level"});
    DescribeRuns(visit, r, "length of the stimulus");
    visit.Zeros(12);
}

constexpr void Describe(auto& visit, OneOf<ITCSegmentedNoiseParameters> auto& r) {
    visit(r.amplitude, {"amplitude", kCodes, "standard deviation of the levels"});
    visit(r.mean, {"mean", kCodes, "holding level"});
    visit(r.seed, {"seed", kNoUnit, kSeedMeaning});
    DescribeRuns(visit, r, "length of the noise");
    visit(r.segmentPoints, {"segmentPoints", kSamples, "length of a segment"});
    visit.Zeros(12);
}

constexpr void Describe(auto& visit, OneOf<ITCBinaryNoiseParameters> auto& r) {
    visit(r.amplitude, {"amplitude", kCodes, "magnitude of the levels"});
    visit(r.mean, {"mean", kCodes, "holding level"});
    visit(r.seed, {"seed", kNoUnit, kSeedMeaning});
    DescribeRuns(visit, r, "length of the noise");
    visit(r.segmentPoints, {"segmentPoints", kSamples, "length of a segment"});
    visit.Zeros(12);
}

constexpr void Describe(auto& visit, OneOf<ITCGClampParameters> auto& r) {
    visit(r.excitatoryReversal,
          {"excitatoryReversal", "mV", "reversal potential of the excitatory conductance"});
    visit(r.inhibitoryReversal,
          {"inhibitoryReversal", "mV", "reversal potential of the inhibitory conductance"});
}

constexpr void Describe(auto& visit, OneOf<ITCCirclePulseParameters> auto& r) {
    visit(r.value0, {"value0", kNoUnit, "kept as given"});
    visit(r.value1, {"value1", kNoUnit, "kept as given"});
    visit(r.value2, {"value2", kNoUnit, "kept as given"});
    visit(r.tripleA, {"tripleA", kNoUnit, "kept as given"});
    visit(r.tripleB, {"tripleB", kNoUnit, "kept as given"});
    DescribeRuns(visit, r, "length of the stimulus");
}

constexpr void Describe(auto& visit, OneOf<ITCAlternateVoltageParameters> auto& r) {
    visit(r.halfPeriod, {"halfPeriod", kSamples, "at each level"});
    visit(r.amplitude, {"amplitude", kCodes, "added to the mean on the second level"});
    visit(r.mean, {"mean", kCodes, "first level, and the holding level"});
    DescribeRuns(visit, r, "length of the alternation");
    visit.Zeros(12);
}

constexpr void Describe(auto& visit, OneOf<ITCSpatialStmParameters> auto& r) {
    visit(r.points, {"points", kSamples, "zero samples generated"});
    visit.Zeros(12);
}

// On file the home platform's 256 component references are 1,024 zero bytes.
constexpr void Describe(auto& visit, OneOf<ITCSummedParameters> auto& r) {
    visit(r.count, {"count", kNoUnit, "components in use"});
    visit(r.componentType, {"componentType", kNoUnit, "stimulus type of each; sums do not nest"});
    visit.Zeros(4 * ITC_COMPONENTS);
}

}  // namespace corvantis
