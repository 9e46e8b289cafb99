// Any bytes as a record, which the first byte picks: what was read must survive being written.
#include <cstdlib>
#include <cstring>
#include <vector>

#include "Corvantis.h"
#include "Session.h"

namespace {

using Bytes = std::vector<uint8_t>;

// A stream over a copy of the bytes; fmemopen cannot hold none at all.
FILE* OpenBytes(Bytes& bytes) {
    if (bytes.empty()) bytes.push_back(0);
    FILE* stream = fmemopen(bytes.data(), bytes.size(), "r+");
    if (stream == nullptr) std::abort();
    return stream;
}

// A record fails to be read exactly when its bytes are too few; then it says nothing further.
template <class Record, class ReadFunction, class WriteFunction>
void RoundTrip(Bytes bytes, size_t encodedSize, ReadFunction read, WriteFunction write) {
    Record first;
    std::memset(&first, 0, sizeof first);
    FILE* source = OpenBytes(bytes);
    const bool complete = read(source, &first);
    std::fclose(source);
    if (complete != (bytes.size() >= encodedSize)) std::abort();
    if (!complete) return;

    Bytes encoded(encodedSize);
    FILE* sink = OpenBytes(encoded);
    const bool written = write(sink, &first) && std::fflush(sink) == 0;
    std::rewind(sink);
    Record second;
    std::memset(&second, 0, sizeof second);
    if (!written || !read(sink, &second)) std::abort();
    std::fclose(sink);
    if (std::memcmp(&first, &second, sizeof first) != 0) std::abort();
}

void RoundTripHeader(const Bytes& bytes, int32_t version) {
    // An old header's latency is computed anew, from fields that came through unchanged.
    const auto read = [version](FILE* stream, ITCEpochHeader* record) {
        return Read_ITCEpochHeader(stream, record, version);
    };
    RoundTrip<ITCEpochHeader>(bytes, sizeof(ITCEpochHeader), read, Write_ITCEpochHeader);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    corvantis_fuzz::StartLibrary();
    if (size < 1) return 0;
    const Bytes bytes(data + 1, data + size);
#define ROUND_TRIP(Record, encodedSize) \
    return RoundTrip<Record>(bytes, encodedSize, Read_##Record, Write_##Record), 0
    switch (data[0] % 16) {
        case 0:
            ROUND_TRIP(ITCFileHeader, 580);
        case 1:
            ROUND_TRIP(ITCSineParameters, 40);
        case 2:
            ROUND_TRIP(ITCNoiseParameters, 36);
        case 3:
            ROUND_TRIP(ITCPulseParameters, 32);
        case 4:
            ROUND_TRIP(ITCRampParameters, 32);
        case 5:
            return RoundTripHeader(bytes, 6), 0;
        case 6:
            ROUND_TRIP(ITCGenericParameters, 32);
        case 7:
            ROUND_TRIP(ITCSummedParameters, 1284);
        case 8:
            return RoundTripHeader(bytes, 8), 0;
        case 9:
            ROUND_TRIP(ITCSegmentedNoiseParameters, 40);
        case 10:
            ROUND_TRIP(ITCBinaryNoiseParameters, 40);
        case 11:
            ROUND_TRIP(ITCGClampParameters, 8);
        case 12:
            ROUND_TRIP(ITCCirclePulseParameters, 48);
        case 13:
            ROUND_TRIP(ITCAlternateVoltageParameters, 36);
        default:
            return 0;
    }
#undef ROUND_TRIP
}
