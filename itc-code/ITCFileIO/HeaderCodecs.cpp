// The exported codecs of the file header and the epoch header.
#include "Corvantis.h"
#include "ITCFileIO/Latency.h"
#include "ITCFileIO/RecordCodec.h"

namespace corvantis {
namespace {

static_assert(sizeof(ITCFileHeader) == 580 && EncodedSize<ITCFileHeader>() == 580);
static_assert(sizeof(ITCEpochHeader) == 912 && EncodedSize<ITCEpochHeader>() == 912);

}  // namespace
}  // namespace corvantis

bool Write_ITCFileHeader(FILE* stream, const ITCFileHeader* record) {
    return corvantis::WriteStructure(stream, record);
}
bool Read_ITCFileHeader(FILE* stream, ITCFileHeader* record) {
    return corvantis::ReadStructure(stream, record);
}
bool Write_ITCEpochHeader(FILE* stream, const ITCEpochHeader* record) {
    return corvantis::WriteStructure(stream, record);
}
bool Read_ITCEpochHeader(FILE* stream, ITCEpochHeader* record, int32_t version) {
    const bool complete = corvantis::ReadStructure(stream, record);
    corvantis::RestoreLatency(*record, version);
    return complete;
}
