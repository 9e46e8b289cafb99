// Every record of the data file beside its bytes, worked out by hand from its layout.
#pragma once

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <functional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "Corvantis.h"
#include "FileBytes.h"

namespace corvantis_test {

constexpr uint8_t kGapFill = 0xA5;
constexpr uint32_t kNoDispatch = 0;

// Where a record has no fields: zero on file, untouched in memory; the last stretch may end later
// in memory than on file.
using Gaps = std::vector<std::pair<size_t, size_t>>;

struct RecordCase {
    std::string name;
    uint32_t type;  // kNoDispatch: the dispatchers do not know the record
    Bytes file;
    Bytes memory;  // with kGapFill in the gaps
    Gaps gaps;
    std::function<bool(FILE*, const void*)> write;
    std::function<bool(FILE*, void*)> read;
};

inline void PrintTo(const RecordCase& record, std::ostream* out) { *out << record.name; }

inline void FillGaps(Bytes& bytes, const Gaps& gaps, uint8_t value) {
    for (const auto& [begin, end] : gaps) {
        for (size_t i = begin; i < end && i < bytes.size(); ++i) bytes[i] = value;
    }
}

template <class Record>
RecordCase Case(const char* name, uint32_t type, bool (*write)(FILE*, const Record*),
                bool (*read)(FILE*, Record*), const Record& record, const Bytes& file,
                const Gaps& gaps) {
    Bytes memory(sizeof(Record));
    std::memcpy(memory.data(), &record, sizeof(Record));
    FillGaps(memory, gaps, kGapFill);
    return {name,
            type,
            file,
            memory,
            gaps,
            [=](FILE* stream, const void* from) {
                return write(stream, static_cast<const Record*>(from));
            },
            [=](FILE* stream, void* to) { return read(stream, static_cast<Record*>(to)); }};
}

// A record of 32-bit fields in their order, the rest of it without fields.
template <class Record>
RecordCase Fields(const char* name, uint32_t type, bool (*write)(FILE*, const Record*),
                  bool (*read)(FILE*, Record*), const std::vector<uint32_t>& fields) {
    Record record;
    Bytes file(sizeof record);
    std::memcpy(&record, fields.data(), 4 * fields.size());
    for (size_t i = 0; i < fields.size(); ++i) Put(file, 4 * i, Big32(fields[i]));
    return Case(name, type, write, read, record, file, {{4 * fields.size(), sizeof record}});
}

inline bool ReadCurrentEpochHeader(FILE* stream, ITCEpochHeader* record) {
    return Read_ITCEpochHeader(stream, record, 8);
}

inline RecordCase FileHeaderCase() {
    ITCFileHeader header{};
    header.version = -56;
    header.fileLongA = 0x01020304;
    std::strcpy(header.fileComment, "slice 3");
    header.fileComment[511] = 'z';
    header.fileFlagA = 1;
    header.fileFlagB = 2;
    header.inputScale = 3200.0F;
    header.outputScale = -70.0F;
    header.pipelineDepth = 5;
    header.numEpochs = 7;
    header.epochTablePosition = -2;
    header.offset = 0.5F;
    header.fileFlagC = 2;
    header.fileFlagD = 1;
    header.stmDataFormat = -3;
    header.fileLongB = -1;
    const Bytes file =
        Join({Hex("C8 000000 01020304"), Text("slice 3", 511), Hex("7A"),
              Hex("01 02 0000 45480000 C28C0000 05 000000 00000007 FFFFFFFE 3F000000 02 01 FD 00"),
              Hex("FFFFFFFF"), Bytes(24)});
    return Case("FileHeader", kNoDispatch, Write_ITCFileHeader, Read_ITCFileHeader, header, file,
                {{1, 4}, {522, 524}, {533, 536}, {551, 552}, {556, 580}});
}

inline RecordCase EpochHeaderCase() {
    const ITCEpochHeader header{
        .epochTime = 1.0F,
        .epochComment = "rest",
        .ampGain = {1, 2, 4, 8},
        .ampValue = {0.5F, 0.25F, 10, 100},
        .convFactor = {20, -70, 3200, -1.5F},
        .ampCode = {1, -2, 3, 4},
        .acqSettingB = -5,
        .padding0 = {},
        .samplingInterval = 100,
        .epochPoints = 65536,
        .sequenceLength = 3,
        .channelSequence = {0, 0x880, 0xD100, 0x89ABCDEF},
        .spareChannelBytes = {9, 8, 7, -6},
        .acqSettingA = 17,
        .stimType = {3, 7, 11, 14},
        .outputUnits = {"pA", "nS", "V", "0123456789abcdE"},
        .inputUnits = {"mV", "", "C", "fedcba987654321"},
        .ampMode = {-1, 2, 3, 4},
        .padding1 = {},
        .meanOutput = {1, -2, 3, 40000},
        .temperature = 20.0F,
        .digitalOutput = 0x1234,
        .wavelength = 0xFEDC,
        .ndf = {1, 2, 0.5F, 4},
        .ledSetting = {1, 0x8000, 3, 0xFFFF},
        .userValue = {1, 2, 4, 8, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, -70},
        .pointsLatency = 0xFFFE,
        .reserved = {}};
    const Bytes file = Join({Hex("3F800000"),
                             Text("rest", 512),
                             Hex("3F800000 40000000 40800000 41000000"),
                             Hex("3F000000 3E800000 41200000 42C80000"),
                             Hex("41A00000 C28C0000 45480000 BFC00000"),
                             Hex("01 FE 03 04 FB 000000 00000064 00010000 00000003"),
                             Hex("00000000 00000880 0000D100 89ABCDEF 09 08 07 FA 11 03 07 0B 0E"),
                             Text("pA", 16),
                             Text("nS", 16),
                             Text("V", 16),
                             Text("0123456789abcdE", 16),
                             Text("mV", 16),
                             Bytes(16),
                             Text("C", 16),
                             Text("fedcba987654321", 16),
                             Hex("FF 02 03 04 000000"),
                             Hex("00000001 FFFFFFFE 00000003 00009C40 41A00000 1234 FEDC"),
                             Hex("3F800000 40000000 3F000000 40800000 0001 8000 0003 FFFF"),
                             Hex("3F800000 40000000 40800000 41000000"),
                             Bytes(76),
                             Hex("C28C0000 FFFE"),
                             Bytes(22)});
    return Case("EpochHeader", kNoDispatch, Write_ITCEpochHeader, ReadCurrentEpochHeader, header,
                file, {{569, 572}, {741, 744}, {890, 912}});
}

inline RecordCase SumCase() {
    ITCSummedParameters sum{.count = 2, .componentType = {3, -1, 14}, .components = {}};
    sum.componentType[255] = 9;
    return Case("Summed", kNoDispatch, Write_ITCSummedParameters, Read_ITCSummedParameters, sum,
                Join({Hex("00000002 03 FF 0E"), Bytes(252), Hex("09"), Bytes(1024)}),
                {{260, sizeof sum}});
}

// Fields of unlike values in declared order, so that exchanged ones show.
inline std::vector<RecordCase> RecordCases() {
    const std::vector<uint32_t> five = {0xFFFFFFFF, 2, 3, 4, 5};
    const std::vector<uint32_t> seven = {0x80000000, 2, 3, 4, 5, 6, 0x7FFFFFFF};
    return {
        FileHeaderCase(),
        EpochHeaderCase(),
        SumCase(),
        Fields("Sine", 1, Write_ITCSineParameters, Read_ITCSineParameters, seven),
        Fields("Noise", 2, Write_ITCNoiseParameters, Read_ITCNoiseParameters,
               {500, 0xFFFFFFFF, 0x12345678, 4, 5, 6, 7, 3000, 9}),
        Fields("Pulse", 3, Write_ITCPulseParameters, Read_ITCPulseParameters, five),
        Fields("Ramp", 4, Write_ITCRampParameters, Read_ITCRampParameters, five),
        Fields("Generic", 6, Write_ITCGenericParameters, Read_ITCGenericParameters, five),
        Fields("SegmentedNoise", 9, Write_ITCSegmentedNoiseParameters,
               Read_ITCSegmentedNoiseParameters, seven),
        Fields("BinaryNoise", 10, Write_ITCBinaryNoiseParameters, Read_ITCBinaryNoiseParameters,
               seven),
        Fields("GClamp", 11, Write_ITCGClampParameters, Read_ITCGClampParameters,
               {0x3F800000, 0xC28C0000}),
        Fields("CirclePulse", 12, Write_ITCCirclePulseParameters, Read_ITCCirclePulseParameters,
               {1, 2, 3, 4, 5, 0xFFFFFFFA, 7, 8, 9, 10, 11, 12}),
        Fields("AlternateVoltage", 13, Write_ITCAlternateVoltageParameters,
               Read_ITCAlternateVoltageParameters, {2, 0xFFFFFFFD, 4, 5, 6, 7}),
        Fields("Spatial", 14, Write_ITCSpatialStimulusParameters, Read_ITCSpatialStimulusParameters,
               {800}),
    };
}

}  // namespace corvantis_test
