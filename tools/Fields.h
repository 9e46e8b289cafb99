// The fields of every record by their own names and units, listed once for text and JSON.
//
// A visitor is called as visit(name, value, unit), the value a number, a text or an array of
// either.
#pragma once

#include "Container.h"
#include "Corvantis.h"

namespace corvantis {

template <class Visitor>
void VisitFields(const ITCFileHeader& header, Visitor visit) {
    visit("version", header.version, "");
    visit("fileLongA", header.fileLongA, "");
    visit("fileComment", header.fileComment, "");
    visit("fileFlagA", header.fileFlagA, "");
    visit("fileFlagB", header.fileFlagB, "");
    visit("inputScale", header.inputScale, "counts/V");
    visit("outputScale", header.outputScale, "counts/V");
    visit("pipelineDepth", header.pipelineDepth, "samples");
    visit("numEpochs", header.numEpochs, "");
    visit("epochTablePosition", static_cast<uint32_t>(header.epochTablePosition), "bytes");
    visit("offset", header.offset, "");
    visit("fileFlagC", header.fileFlagC, "");
    visit("fileFlagD", header.fileFlagD, "");
    visit("stmDataFormat", header.stmDataFormat, "");
    visit("fileLongB", header.fileLongB, "");
}

template <class Visitor>
void VisitFields(const ITCEpochHeader& header, Visitor visit) {
    visit("epochTime", header.epochTime, "");
    visit("epochComment", header.epochComment, "");
    visit("ampGain", header.ampGain, "V/unit");
    visit("ampValue", header.ampValue, "");
    visit("convFactor", header.convFactor, "units/V");
    visit("ampCode", header.ampCode, "");
    visit("acqSettingB", header.acqSettingB, "");
    visit("samplingInterval", header.samplingInterval, "µs");
    visit("epochPoints", header.epochPoints, "samples");
    visit("sequenceLength", header.sequenceLength, "entries");
    visit("channelSequence", header.channelSequence, "");
    visit("spareChannelBytes", header.spareChannelBytes, "");
    visit("acqSettingA", header.acqSettingA, "");
    visit("stimType", header.stimType, "");
    visit("outputUnits", header.outputUnits, "");
    visit("inputUnits", header.inputUnits, "");
    visit("ampMode", header.ampMode, "");
    visit("meanOutput", header.meanOutput, "DAC codes");
    visit("temperature", header.temperature, "°C");
    visit("digitalOutput", header.digitalOutput, "");
    visit("wavelength", header.wavelength, "nm");
    visit("ndf", header.ndf, "");
    visit("ledSetting", header.ledSetting, "");
    visit("userValue", header.userValue, "");
    visit("pointsLatency", header.pointsLatency, "samples");
}

// Stimulus records share field names, and a field's unit goes with its name.
template <class Record, class Visitor>
void VisitRecord(const Record& record, Visitor visit) {
    if constexpr (requires { record.excitatoryReversal; }) {
        visit("excitatoryReversal", record.excitatoryReversal, "mV");
        visit("inhibitoryReversal", record.inhibitoryReversal, "mV");
    }
    if constexpr (requires { record.halfPeriod; })
        visit("halfPeriod", record.halfPeriod, "samples");
    if constexpr (requires { record.amplitude; }) visit("amplitude", record.amplitude, "DAC codes");
    if constexpr (requires { record.mean; }) visit("mean", record.mean, "DAC codes");
    if constexpr (requires { record.period; }) {
        visit("period", record.period, "samples");
        visit("phase", record.phase, "");
    }
    if constexpr (requires { record.value0; }) {
        visit("value0", record.value0, "");
        visit("value1", record.value1, "");
        visit("value2", record.value2, "");
        visit("tripleA", record.tripleA, "");
        visit("tripleB", record.tripleB, "");
    }
    if constexpr (requires { record.seed; }) visit("seed", record.seed, "");
    if constexpr (requires { record.prePoints; }) visit("prePoints", record.prePoints, "samples");
    if constexpr (requires { record.points; }) visit("points", record.points, "samples");
    if constexpr (requires { record.tailPoints; })
        visit("tailPoints", record.tailPoints, "samples");
    if constexpr (requires { record.segmentPoints; }) {
        visit("segmentPoints", record.segmentPoints, "samples");
    }
    if constexpr (requires { record.cutoffFrequency; }) {
        visit("smoothingPoints", record.smoothingPoints, "samples");
        visit("cutoffFrequency", record.cutoffFrequency, "Hz");
        visit("filterOrder", record.filterOrder, "");
    }
}

// Types 5 and 8 have nothing on file, and so no fields here.
template <class Visitor>
void VisitFields(const Stimulus& stimulus, Visitor visit) {
    const auto as = [&]<class Record>(const Record*) {
        VisitRecord(*reinterpret_cast<const Record*>(stimulus.record.data()), visit);
    };
    switch (stimulus.type) {
        case ITC_STIMULUS_SINE:
            return as(static_cast<ITCSineParameters*>(nullptr));
        case ITC_STIMULUS_NOISE:
            return as(static_cast<ITCNoiseParameters*>(nullptr));
        case ITC_STIMULUS_PULSE:
            return as(static_cast<ITCPulseParameters*>(nullptr));
        case ITC_STIMULUS_RAMP:
            return as(static_cast<ITCRampParameters*>(nullptr));
        case ITC_STIMULUS_GENERIC:
            return as(static_cast<ITCGenericParameters*>(nullptr));
        case ITC_STIMULUS_SEGMENTED_NOISE:
            return as(static_cast<ITCSegmentedNoiseParameters*>(nullptr));
        case ITC_STIMULUS_BINARY_NOISE:
            return as(static_cast<ITCBinaryNoiseParameters*>(nullptr));
        case ITC_STIMULUS_DYNAMIC_CLAMP:
            return as(static_cast<ITCGClampParameters*>(nullptr));
        case ITC_STIMULUS_CIRCLE_PULSE:
            return as(static_cast<ITCCirclePulseParameters*>(nullptr));
        case ITC_STIMULUS_ALTERNATING_VOLTAGE:
            return as(static_cast<ITCAlternateVoltageParameters*>(nullptr));
        case ITC_STIMULUS_SPATIAL:
            return as(static_cast<ITCSpatialStmParameters*>(nullptr));
        default:
            return;
    }
}

}  // namespace corvantis
