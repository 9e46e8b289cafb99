// The layout of every record on file, described once: fields in file order and runs of zero bytes.
// A visitor makes of a description the size, the writer or the reader.
#pragma once

#include <concepts>
#include <type_traits>

#include "Corvantis.h"

namespace corvantis {

template <class Record, class... Candidates>
concept OneOf = (std::same_as<std::remove_const_t<Record>, Candidates> || ...);

constexpr void Describe(auto& visit, OneOf<ITCFileHeader> auto& r) {
    visit(r.version);
    visit.Zeros(3);
    visit(r.fileLongA, r.fileComment, r.fileFlagA, r.fileFlagB);
    visit.Zeros(2);
    visit(r.inputScale, r.outputScale, r.pipelineDepth);
    visit.Zeros(3);
    visit(r.numEpochs, r.epochTablePosition, r.offset, r.fileFlagC, r.fileFlagD, r.stmDataFormat);
    visit.Zeros(1);
    visit(r.fileLongB);
    visit.Zeros(24);
}

constexpr void Describe(auto& visit, OneOf<ITCEpochHeader> auto& r) {
    visit(r.epochTime, r.epochComment, r.ampGain, r.ampValue, r.convFactor, r.ampCode);
    visit(r.acqSettingB);
    visit.Zeros(3);
    visit(r.samplingInterval, r.epochPoints, r.sequenceLength, r.channelSequence);
    visit(r.spareChannelBytes, r.acqSettingA, r.stimType, r.outputUnits, r.inputUnits, r.ampMode);
    visit.Zeros(3);
    visit(r.meanOutput, r.temperature, r.digitalOutput, r.wavelength, r.ndf, r.ledSetting);
    visit(r.userValue, r.pointsLatency);
    visit.Zeros(22);
}

constexpr void Describe(auto& visit, OneOf<ITCSineParameters> auto& r) {
    visit(r.amplitude, r.mean, r.period, r.phase, r.points, r.tailPoints, r.prePoints);
    visit.Zeros(12);
}

constexpr void Describe(auto& visit, OneOf<ITCNoiseParameters> auto& r) {
    visit(r.amplitude, r.mean, r.seed, r.points, r.tailPoints, r.prePoints, r.smoothingPoints);
    visit(r.cutoffFrequency, r.filterOrder);
}

constexpr void Describe(
    auto& visit, OneOf<ITCPulseParameters, ITCRampParameters, ITCGenericParameters> auto& r) {
    visit(r.amplitude, r.mean, r.points, r.tailPoints, r.prePoints);
    visit.Zeros(12);
}

constexpr void Describe(auto& visit,
                        OneOf<ITCSegmentedNoiseParameters, ITCBinaryNoiseParameters> auto& r) {
    visit(r.amplitude, r.mean, r.seed, r.points, r.tailPoints, r.prePoints, r.segmentPoints);
    visit.Zeros(12);
}

constexpr void Describe(auto& visit, OneOf<ITCGClampParameters> auto& r) {
    visit(r.excitatoryReversal, r.inhibitoryReversal);
}

constexpr void Describe(auto& visit, OneOf<ITCCirclePulseParameters> auto& r) {
    visit(r.value0, r.value1, r.value2, r.tripleA, r.tripleB, r.points, r.tailPoints, r.prePoints);
}

constexpr void Describe(auto& visit, OneOf<ITCAlternateVoltageParameters> auto& r) {
    visit(r.halfPeriod, r.amplitude, r.mean, r.points, r.tailPoints, r.prePoints);
    visit.Zeros(12);
}

constexpr void Describe(auto& visit, OneOf<ITCSpatialStmParameters> auto& r) {
    visit(r.points);
    visit.Zeros(12);
}

// On file the home platform's 256 component references are 1,024 zero bytes.
constexpr void Describe(auto& visit, OneOf<ITCSummedParameters> auto& r) {
    visit(r.count, r.componentType);
    visit.Zeros(4 * ITC_COMPONENTS);
}

}  // namespace corvantis
