// Records and arrays between memory and the data file.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "Corvantis.h"
#include "FileBytes.h"
#include "LibrarySession.h"

namespace {

using namespace corvantis_test;

struct RecordCase {
    uint32_t type;       // 0: no stimulus
    const char* layout;  // elements of 1, 2 and 4 bytes and zero bytes: "7i12z"
    size_t memorySize;
    std::function<bool(FILE*, const void*)> write;
    std::function<bool(FILE*, void*)> read;
};

template <class Record, class... Version>
RecordCase Of(uint32_t type, const char* layout, bool (*write)(FILE*, const Record*),
              bool (*read)(FILE*, Record*, Version...)) {
    return {
        type, layout, sizeof(Record),
        [=](FILE* to, const void* from) { return write(to, static_cast<const Record*>(from)); },
        [=](FILE* from, void* to) { return read(from, static_cast<Record*>(to), Version{8}...); }};
}

const RecordCase kRecords[] = {
    Of(0, "1b3z1i514b2z2i1b3z3i3b1z1i24z", Write_ITCFileHeader, Read_ITCFileHeader),
    Of(0, "1i512b12i5b3z7i141b3z5i2h4i4h24i1h22z", Write_ITCEpochHeader, Read_ITCEpochHeader),
    Of(0, "1i256b1024z", Write_ITCSummedParameters, Read_ITCSummedParameters),
    Of(1, "7i12z", Write_ITCSineParameters, Read_ITCSineParameters),
    Of(2, "9i", Write_ITCNoiseParameters, Read_ITCNoiseParameters),
    Of(3, "5i12z", Write_ITCPulseParameters, Read_ITCPulseParameters),
    Of(4, "5i12z", Write_ITCRampParameters, Read_ITCRampParameters),
    Of(6, "5i12z", Write_ITCGenericParameters, Read_ITCGenericParameters),
    Of(9, "7i12z", Write_ITCSegmentedNoiseParameters, Read_ITCSegmentedNoiseParameters),
    Of(10, "7i12z", Write_ITCBinaryNoiseParameters, Read_ITCBinaryNoiseParameters),
    Of(11, "2i", Write_ITCGClampParameters, Read_ITCGClampParameters),
    Of(12, "12i", Write_ITCCirclePulseParameters, Read_ITCCirclePulseParameters),
    Of(13, "6i12z", Write_ITCAlternateVoltageParameters, Read_ITCAlternateVoltageParameters),
    Of(14, "1i12z", Write_ITCSpatialStimulusParameters, Read_ITCSpatialStimulusParameters)};

Bytes BigEndian(const uint8_t* element, char kind) {
    uint16_t half;
    uint32_t word;
    std::memcpy(&half, element, 2);
    std::memcpy(&word, element, 4);
    if (kind == 'i') return Big32(word);
    return kind == 'h' ? BigSamples({half}) : Bytes{kind == 'b' ? *element : uint8_t{0}};
}

// The file's bytes; fields lie in memory as on file. Bytes that are no field's become `fill`.
Bytes FileImage(const char* layout, Bytes& memory, uint8_t fill) {
    Bytes file, padded = Join({memory, Bytes(4)});
    while (*layout != '\0') {
        char* kind = nullptr;
        const auto count = std::strtoul(layout, &kind, 10);
        for (size_t i = 0; i < count; ++i) {
            if (*kind == 'z') memory.at(file.size()) = fill;
            file = Join({file, BigEndian(&padded[file.size()], *kind)});
        }
        layout = kind + 1;
    }
    std::fill(memory.begin() + static_cast<ptrdiff_t>(file.size()), memory.end(), fill);
    return file;
}

// Any content, from a file that ends anywhere: what arrived is there, the rest as it was before.
TEST(RecordCodec, WritesEveryFieldAndReadsAsFarAsTheFileGoes) {
    PseudoRandom random;
    for (const RecordCase& record : kRecords) {
        SCOPED_TRACE(testing::Message() << record.type << " " << record.layout);
        Bytes memory(record.memorySize);
        random.Fill(memory);
        const Stream own = StreamOver(), dispatched = StreamOver(),
                     refusing(fopen("/dev/null", "r"), fclose);
        EXPECT_TRUE(record.write(own.get(), memory.data()));
        const Bytes file = FileImage(record.layout, memory, 0xA5);
        EXPECT_EQ(Content(own.get()), file);
        EXPECT_FALSE(record.write(refusing.get(), memory.data()));
        if (record.type != 0)
            EXPECT_TRUE(Write_ITCStimulusParameters(dispatched.get(), memory.data(), record.type));
        EXPECT_EQ(Content(dispatched.get()), record.type == 0 ? Bytes{} : file);
        for (size_t size = 0; size <= file.size();
             size += file.size() > 99 && size < 880 ? 37 : 1) {
            const Stream cut = StreamOver(First(file, size)), again = StreamOver();
            Bytes read(memory.size(), 0xA5);
            const bool done = record.type == 0 || size % 2 == 0
                                  ? record.read(cut.get(), read.data())
                                  : Read_ITCStimulusParameters(cut.get(), read.data(), record.type);
            EXPECT_EQ(done, size == file.size());
            EXPECT_TRUE(!done || read == memory);
            Bytes expected(memory.size(), 0xA5);
            record.write(again.get(), read.data());
            expected = FileImage(record.layout, expected, 0xA5);
            Put(expected, 0, First(file, size));
            EXPECT_EQ(Content(again.get()), expected) << size;
        }
    }
}

TEST(RecordCodec, TypesWithoutAnEncodingPrintAndCountAsDone) {
    for (const uint32_t type : {0U, 5U, 7U, 8U, 15U, 255U, 0xFFFFFFFFU}) {
        QuietOutput output;
        EXPECT_TRUE(Write_ITCStimulusParameters(nullptr, nullptr, type));
        EXPECT_TRUE(Read_ITCStimulusParameters(nullptr, nullptr, type));
        EXPECT_EQ(output.Text(),
                  "FileIO: Unrecognized stimulus-typeFail-point (itc-code/ITCFileIO:700)\n"
                  "FileIO: Unrecognized stimulus-typeFail-point (itc-code/ITCFileIO:743)\n");
    }
}

// Files of version 6 and older store no latency: it is the index of the first dynamic clamp, or the
// entries, + 2 * entries + 5, modulo 65536.
TEST(EpochHeaderOfOldFiles, HasALatencyFromItsSequence) {
    struct Case {
        uint32_t entries;
        uint16_t latency;
        Bytes bytesFromTypes;  // the stimulus types, then on into the unit names
    };
    for (const Case& each : {Case{3, 12, {1, 11, 1}},
                             {2, 11, {1, 2, 11}},
                             {2, 9, {11, 11}},
                             {4, 17, {1, 1, 1, 1, 11}},
                             {0, 5, {1, 11}},
                             {0xFFFFFFFE, 1, {1, 11}},
                             {6, 23, {1, 1, 1, 1, 'p', 'A', 11}},
                             {100000, 37861, {1, 1, 1, 1}},
                             {INT32_MAX, 2, {1}},
                             {1U << 31, 5, {1, 11}}}) {
        Bytes file(912);
        Put(file, 580, Big32(each.entries));
        Put(file, 605, each.bytesFromTypes);
        Put(file, 888, Hex("0B34"));  // where the stored latency begins, the search ends
        for (const int32_t version : {-128, 0, 6, 7, 8, 127}) {
            ITCEpochHeader header{};
            EXPECT_TRUE(Read_ITCEpochHeader(StreamOver(file).get(), &header, version));
            EXPECT_EQ(header.pointsLatency, version <= 6 ? each.latency : 0x0B34) << each.entries;
        }
    }
}

// Takes in no 0xEE; chosen by content, since the C library may cut and repeat what it writes.
struct RefusingSink {
    Bytes taken;
    Stream stream{fopencookie(this, "wb", {nullptr, Write, nullptr, nullptr}), fclose};

    RefusingSink() { setvbuf(stream.get(), nullptr, _IONBF, 0); }
    static ssize_t Write(void* cookie, const char* bytes, size_t size) {
        const char* end = std::find(bytes, bytes + size, static_cast<char>(0xEE));
        auto& taken = static_cast<RefusingSink*>(cookie)->taken;
        taken.insert(taken.end(), bytes, end);
        return end - bytes;
    }
};

TEST(Codecs, AFailureStopsNoLaterElement) {
    constexpr auto kRefused = static_cast<int32_t>(0xEEEEEEEE);
    RefusingSink array, record;
    const ITCPulseParameters pulse{1, kRefused, 3, 4, 5, {}};
    EXPECT_FALSE(WriteArray_int(array.stream.get(), &pulse.amplitude, 4));
    EXPECT_EQ(array.taken, Hex("00000001 00000003 00000004"));
    EXPECT_FALSE(Write_ITCPulseParameters(record.stream.get(), &pulse));
    EXPECT_EQ(record.taken, Hex("00000001 00000003 00000004 00000005 00000000 00000000 00000000"));
}

template <class Element, class Writer, class Reader>
void ExpectArray(Writer write, Reader read, const std::vector<Element>& values, const Bytes& file) {
    const auto count = static_cast<int>(values.size());
    const Stream written = StreamOver(), cut = StreamOver(First(file, file.size() - 1));
    EXPECT_TRUE(write(written.get(), values.data(), count));
    EXPECT_TRUE(Content(written.get()) == file);
    rewind(written.get());
    std::vector<Element> taken(values.size() + 1);
    EXPECT_TRUE(read(written.get(), taken.data(), count));
    EXPECT_EQ(std::memcmp(taken.data(), values.data(), sizeof(Element) * values.size()), 0);
    EXPECT_EQ(taken.back(), 0);
    // A negative count must move nothing: taken for a very large one it would run through memory.
    for (const int none : {0, -1, INT32_MIN}) {
        EXPECT_EQ(write(nullptr, values.data(), none), none == 0);
        EXPECT_EQ(read(nullptr, taken.data(), none), none == 0);
    }
    taken.assign(taken.size(), values[0]);  // of a value that is cut, the last byte stays
    const Bytes first = First(file, sizeof(Element) == 8 ? 4 : sizeof(Element));
    EXPECT_FALSE(read(cut.get(), taken.data(), count));
    write(written.get(), taken.data(), count);
    Bytes expected = file;
    expected.back() = first.back();
    EXPECT_TRUE(First(Content(written.get()), 2 * file.size()) == Join({file, expected}));
}

// Beyond one block, and bit patterns that a conversion would not keep.
TEST(ArrayCodec, ElementsFollowInIndexOrderBigEndian) {
    ExpectArray<long>(WriteArray_long, ReadArray_long, {1, -2, 0x7FFFFF00},
                      Hex("00000001 FFFFFFFE 7FFFFF00"));
    ExpectArray<int16_t>(WriteArray_short, ReadArray_short, {0x1234, -2}, Hex("1234 FFFE"));
    std::vector<uint32_t> patterns(40000);
    PseudoRandom().Fill(patterns);
    for (uint32_t i = 0; i < 1000; ++i) patterns[i + 1] = 0x7F800000U + i;
    for (uint32_t i = 0; i < 1000; ++i) patterns[1001 + i] = 0x0000807FU + (i << 16);
    Bytes file;
    for (const uint32_t pattern : patterns)
        for (const uint8_t byte : Big32(pattern)) file.push_back(byte);
    const auto* ints = reinterpret_cast<const int32_t*>(patterns.data());
    ExpectArray<int32_t>(WriteArray_int, ReadArray_int, {ints, ints + patterns.size()}, file);
    std::vector<float> floats(patterns.size());
    std::memcpy(floats.data(), patterns.data(), file.size());
    ExpectArray<float>(WriteArray_float, ReadArray_float, floats, file);
}

}  // namespace
