// The exported codecs of the stimulus records and their dispatch by type code.
#include "Corvantis.h"
#include "ITCFileIO/RecordCodec.h"
#include "ITCFileIO/StimulusTypes.h"
#include "ITCUtilities/Diagnostics.h"

namespace corvantis {
namespace {

constexpr int kWriterLine = 700;
constexpr int kReaderLine = 743;

}  // namespace
}  // namespace corvantis

// A type without an encoding counts as transferred: a file-wave channel is saved without its record
// while the save reports success, and reading it back consumes nothing.
bool Write_ITCStimulusParameters(FILE* stream, const void* record, uint32_t type) {
    const auto write = corvantis::TypeRow(type).record->write;
    if (write != nullptr) return write(stream, record);
    corvantis::PrintUnrecognizedType(corvantis::kWriterLine);
    return true;
}
bool Read_ITCStimulusParameters(FILE* stream, void* record, uint32_t type) {
    const auto read = corvantis::TypeRow(type).record->read;
    if (read != nullptr) return read(stream, record);
    corvantis::PrintUnrecognizedType(corvantis::kReaderLine);
    return true;
}

bool Write_ITCSineParameters(FILE* stream, const ITCSineParameters* record) {
    return corvantis::WriteStructure(stream, record);
}
bool Read_ITCSineParameters(FILE* stream, ITCSineParameters* record) {
    return corvantis::ReadStructure(stream, record);
}
bool Write_ITCNoiseParameters(FILE* stream, const ITCNoiseParameters* record) {
    return corvantis::WriteStructure(stream, record);
}
bool Read_ITCNoiseParameters(FILE* stream, ITCNoiseParameters* record) {
    return corvantis::ReadStructure(stream, record);
}
bool Write_ITCPulseParameters(FILE* stream, const ITCPulseParameters* record) {
    return corvantis::WriteStructure(stream, record);
}
bool Read_ITCPulseParameters(FILE* stream, ITCPulseParameters* record) {
    return corvantis::ReadStructure(stream, record);
}
bool Write_ITCRampParameters(FILE* stream, const ITCRampParameters* record) {
    return corvantis::WriteStructure(stream, record);
}
bool Read_ITCRampParameters(FILE* stream, ITCRampParameters* record) {
    return corvantis::ReadStructure(stream, record);
}
bool Write_ITCGenericParameters(FILE* stream, const ITCGenericParameters* record) {
    return corvantis::WriteStructure(stream, record);
}
bool Read_ITCGenericParameters(FILE* stream, ITCGenericParameters* record) {
    return corvantis::ReadStructure(stream, record);
}
bool Write_ITCSegmentedNoiseParameters(FILE* stream, const ITCSegmentedNoiseParameters* record) {
    return corvantis::WriteStructure(stream, record);
}
bool Read_ITCSegmentedNoiseParameters(FILE* stream, ITCSegmentedNoiseParameters* record) {
    return corvantis::ReadStructure(stream, record);
}
bool Write_ITCBinaryNoiseParameters(FILE* stream, const ITCBinaryNoiseParameters* record) {
    return corvantis::WriteStructure(stream, record);
}
bool Read_ITCBinaryNoiseParameters(FILE* stream, ITCBinaryNoiseParameters* record) {
    return corvantis::ReadStructure(stream, record);
}
bool Write_ITCCirclePulseParameters(FILE* stream, const ITCCirclePulseParameters* record) {
    return corvantis::WriteStructure(stream, record);
}
bool Read_ITCCirclePulseParameters(FILE* stream, ITCCirclePulseParameters* record) {
    return corvantis::ReadStructure(stream, record);
}
bool Write_ITCAlternateVoltageParameters(FILE* stream,
                                         const ITCAlternateVoltageParameters* record) {
    return corvantis::WriteStructure(stream, record);
}
bool Read_ITCAlternateVoltageParameters(FILE* stream, ITCAlternateVoltageParameters* record) {
    return corvantis::ReadStructure(stream, record);
}
bool Write_ITCSpatialStimulusParameters(FILE* stream, const ITCSpatialStmParameters* record) {
    return corvantis::WriteStructure(stream, record);
}
bool Read_ITCSpatialStimulusParameters(FILE* stream, ITCSpatialStmParameters* record) {
    return corvantis::ReadStructure(stream, record);
}
bool Write_ITCSummedParameters(FILE* stream, const ITCSummedParameters* record) {
    return corvantis::WriteStructure(stream, record);
}
bool Read_ITCSummedParameters(FILE* stream, ITCSummedParameters* record) {
    return corvantis::ReadStructure(stream, record);
}
bool Write_ITCGClampParameters(FILE* stream, const ITCGClampParameters* record) {
    return corvantis::WriteStructure(stream, record);
}
bool Read_ITCGClampParameters(FILE* stream, ITCGClampParameters* record) {
    return corvantis::ReadStructure(stream, record);
}
