// Any bytes as a record, which the first byte picks: what was read must survive being written.
#include <cstring>
#include <vector>

#include "ITCFileIO/StimulusTypes.h"
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
    Record first, second;
    std::memset(&first, 0, sizeof first);
    std::memset(&second, 0, sizeof second);
    FILE* source = OpenBytes(bytes);
    const bool complete = read(source, &first);
    std::fclose(source);
    if (complete != (bytes.size() >= encodedSize)) std::abort();
    if (!complete) return;

    Bytes encoded(encodedSize);
    FILE* sink = OpenBytes(encoded);
    const bool written = write(sink, &first) && std::fflush(sink) == 0;
    std::rewind(sink);
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

void RoundTripStimulus(const Bytes& bytes, uint32_t type) {
    struct AnyRecord {
        uint32_t words[16];
    };
    RoundTrip<AnyRecord>(
        bytes, corvantis::TypeRow(type).record->fileSize,
        [type](FILE* stream, AnyRecord* record) {
            return Read_ITCStimulusParameters(stream, record, type);
        },
        [type](FILE* stream, const AnyRecord* record) {
            return Write_ITCStimulusParameters(stream, record, type);
        });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    corvantis_fuzz::StartLibrary();
    if (size < 1) return 0;
    const Bytes bytes(data + 1, data + size);
    const uint32_t codec = data[0] % (corvantis::kLargestType + 2);
    if (codec == 0) {
        RoundTrip<ITCFileHeader>(bytes, 580, Read_ITCFileHeader, Write_ITCFileHeader);
    } else if (codec == ITC_STIMULUS_SUMMED) {
        RoundTrip<ITCSummedParameters>(bytes, 1284, Read_ITCSummedParameters,
                                       Write_ITCSummedParameters);
    } else if (corvantis::TypeRow(codec).record->fileSize == 0) {
        RoundTripHeader(bytes, codec == ITC_STIMULUS_FILEWAVE ? 6 : 8);
    } else {
        RoundTripStimulus(bytes, codec);
    }
    return 0;
}
