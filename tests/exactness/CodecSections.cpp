// Every codec: records decoded from patterns of bytes, and encoded again.
#include <cstdio>

#include "Corvantis.h"
#include "Sections.h"

namespace exactness {
namespace {

constexpr size_t kLargestRecord = 2048;
constexpr int kElements = 256;

// Signalling NaNs, signs and bytes of every value: what a careless copy or a plain char changes.
std::vector<Bytes> Patterns() {
    std::vector<Bytes> patterns;
    for (const uint32_t word : {0x7F800001u, 0x80000000u, 0xFFFFFFFFu, 0x01020304u}) {
        Bytes pattern;
        while (pattern.size() < kLargestRecord) AppendBytes(pattern, word);
        patterns.push_back(pattern);
    }
    kr_srand(99);
    Bytes numbers;
    while (numbers.size() < kLargestRecord) AppendBytes(numbers, static_cast<uint8_t>(kr_rand()));
    patterns.push_back(numbers);
    return patterns;
}

class Stream {
  public:
    explicit Stream(const Bytes& content = {}) : file(std::tmpfile()) {
        Require(file != nullptr, "opening a temporary file");
        if (!content.empty()) std::fwrite(content.data(), 1, content.size(), file);
        std::rewind(file);
    }
    Stream(const Stream&) = delete;
    Stream& operator=(const Stream&) = delete;
    ~Stream() { std::fclose(file); }
    void AppendTo(Bytes& bytes) const {
        std::rewind(file);
        for (int byte = std::fgetc(file); byte != EOF; byte = std::fgetc(file)) {
            bytes.push_back(static_cast<uint8_t>(byte));
        }
    }
    FILE* const file;
};

template <class Read, class Write>
void Convert(Bytes& bytes, const Bytes& pattern, Read read, Write write) {
    Stream source(pattern);
    Require(read(source.file), "decoding a record");
    Stream target;
    Require(write(target.file), "encoding a record");
    target.AppendTo(bytes);
}

template <class Record>
void Convert(Bytes& bytes, const Bytes& pattern, bool (*read)(FILE*, Record*),
             bool (*write)(FILE*, const Record*)) {
    Record record = {};
    Convert(
        bytes, pattern, [&](FILE* stream) { return read(stream, &record); },
        [&](FILE* stream) { return write(stream, &record); });
}

void ConvertHeaders(Bytes& bytes, const Bytes& pattern) {
    Convert(bytes, pattern, Read_ITCFileHeader, Write_ITCFileHeader);
    for (const int32_t version : {6, 8}) {
        ITCEpochHeader header = {};
        Convert(
            bytes, pattern,
            [&](FILE* stream) { return Read_ITCEpochHeader(stream, &header, version); },
            [&](FILE* stream) { return Write_ITCEpochHeader(stream, &header); });
    }
}

void ConvertStimuli(Bytes& bytes, const Bytes& pattern) {
    Convert(bytes, pattern, Read_ITCSineParameters, Write_ITCSineParameters);
    Convert(bytes, pattern, Read_ITCNoiseParameters, Write_ITCNoiseParameters);
    Convert(bytes, pattern, Read_ITCPulseParameters, Write_ITCPulseParameters);
    Convert(bytes, pattern, Read_ITCRampParameters, Write_ITCRampParameters);
    Convert(bytes, pattern, Read_ITCGenericParameters, Write_ITCGenericParameters);
    Convert(bytes, pattern, Read_ITCSegmentedNoiseParameters, Write_ITCSegmentedNoiseParameters);
    Convert(bytes, pattern, Read_ITCBinaryNoiseParameters, Write_ITCBinaryNoiseParameters);
    Convert(bytes, pattern, Read_ITCCirclePulseParameters, Write_ITCCirclePulseParameters);
    Convert(bytes, pattern, Read_ITCAlternateVoltageParameters,
            Write_ITCAlternateVoltageParameters);
    Convert(bytes, pattern, Read_ITCSpatialStimulusParameters, Write_ITCSpatialStimulusParameters);
    Convert(bytes, pattern, Read_ITCSummedParameters, Write_ITCSummedParameters);
    Convert(bytes, pattern, Read_ITCGClampParameters, Write_ITCGClampParameters);
}

template <class T>
void ConvertArray(Bytes& bytes, const Bytes& pattern, bool (*read)(FILE*, T*, int),
                  bool (*write)(FILE*, const T*, int)) {
    std::vector<T> values(kElements);
    Convert(
        bytes, pattern, [&](FILE* stream) { return read(stream, values.data(), kElements); },
        [&](FILE* stream) { return write(stream, values.data(), kElements); });
}

}  // namespace

void ReportCodecs(Report& report) {
    Bytes headers;
    Bytes stimuli;
    Bytes arrays;
    for (const Bytes& pattern : Patterns()) {
        ConvertHeaders(headers, pattern);
        ConvertStimuli(stimuli, pattern);
        ConvertArray(arrays, pattern, ReadArray_long, WriteArray_long);
        ConvertArray(arrays, pattern, ReadArray_int, WriteArray_int);
        ConvertArray(arrays, pattern, ReadArray_short, WriteArray_short);
        ConvertArray(arrays, pattern, ReadArray_float, WriteArray_float);
    }
    report.Add("codecs-of-headers", headers);
    report.Add("codecs-of-stimuli", stimuli);
    report.Add("codecs-of-arrays", arrays);
}

}  // namespace exactness
