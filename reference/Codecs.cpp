// Values between memory and file, one transfer each, big-endian by shifts.
#include <bit>
#include <cstdint>
#include <utility>

#include "reference/Definitions.h"

namespace definition {
namespace {

template <size_t Size>
struct Word {
    uint8_t bytes[Size];
};

template <class T>
bool Write(FILE* stream, T value) {
    auto bytes = std::bit_cast<Word<sizeof(T)>>(value);
    if constexpr (std::endian::native == std::endian::little) {
        for (size_t i = 0; i < sizeof(T) / 2; ++i) {
            std::swap(bytes.bytes[i], bytes.bytes[sizeof(T) - 1 - i]);
        }
    }
    return std::fwrite(bytes.bytes, sizeof(T), 1, stream) == 1;
}

template <class T>
bool Read(FILE* stream, T& value) {
    Word<sizeof(T)> bytes = {};
    const bool complete = std::fread(bytes.bytes, sizeof(T), 1, stream) == 1;
    if constexpr (std::endian::native == std::endian::little) {
        for (size_t i = 0; i < sizeof(T) / 2; ++i) {
            std::swap(bytes.bytes[i], bytes.bytes[sizeof(T) - 1 - i]);
        }
    }
    value = std::bit_cast<T>(bytes);
    return complete;
}

struct Writer {
    template <class T>
    void Field(const T& value) {
        complete = Write(stream, value) && complete;
    }
    template <class T, size_t Count>
    void Field(const T (&values)[Count]) {
        for (const T& value : values) Field(value);
    }
    void Zeros(int count) {
        for (int i = 0; i < count; ++i) Field(uint8_t{0});
    }
    FILE* stream;
    bool complete = true;
};

struct Reader {
    template <class T>
    void Field(T& value) {
        complete = Read(stream, value) && complete;
    }
    template <class T, size_t Count>
    void Field(T (&values)[Count]) {
        for (T& value : values) Field(value);
    }
    void Zeros(int count) { complete = std::fseek(stream, count, SEEK_CUR) == 0 && complete; }
    FILE* stream;
    bool complete = true;
};

template <class Codec, class Header>
bool Transfer(Codec codec, Header& r) {
    const auto fields = [&](auto&... field) { (codec.Field(field), ...); };
    fields(r.epochTime, r.epochComment, r.ampGain, r.ampValue, r.convFactor, r.ampCode);
    fields(r.acqSettingB);
    codec.Zeros(3);
    fields(r.samplingInterval, r.epochPoints, r.sequenceLength, r.channelSequence);
    fields(r.spareChannelBytes, r.acqSettingA, r.stimType, r.outputUnits, r.inputUnits, r.ampMode);
    codec.Zeros(3);
    fields(r.meanOutput, r.temperature, r.digitalOutput, r.wavelength, r.ndf, r.ledSetting);
    fields(r.userValue, r.pointsLatency);
    codec.Zeros(22);
    return codec.complete;
}

}  // namespace

bool WriteShorts(FILE* stream, const int16_t* values, size_t count) {
    bool complete = true;
    for (size_t i = 0; i < count; ++i) complete = Write(stream, values[i]) && complete;
    return complete;
}

bool ReadShorts(FILE* stream, int16_t* values, size_t count) {
    bool complete = true;
    for (size_t i = 0; i < count; ++i) complete = Read(stream, values[i]) && complete;
    return complete;
}

bool WriteEpochHeader(FILE* stream, const ITCEpochHeader& header) {
    return Transfer(Writer{stream}, header);
}

bool ReadEpochHeader(FILE* stream, ITCEpochHeader& header) {
    return Transfer(Reader{stream}, header);
}

bool ReadPulse(FILE* stream, ITCPulseParameters& record) {
    Reader reader{stream};
    reader.Field(record.amplitude);
    reader.Field(record.mean);
    reader.Field(record.points);
    reader.Field(record.tailPoints);
    reader.Field(record.prePoints);
    reader.Zeros(12);
    return reader.complete;
}

}  // namespace definition
