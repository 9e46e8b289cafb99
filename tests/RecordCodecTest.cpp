// Records and arrays between memory and the data file.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

#include "Corvantis.h"
#include "FileBytes.h"
#include "LibrarySession.h"
#include "StimulusRecords.h"

namespace {

using namespace corvantis_test;

// By the type's code, 0 and 15 being the headers of file and epoch: elements of 1, 2 and 4 bytes
// (b, h, i) and zero bytes (z). Types 5 and 8 have none.
constexpr const char* kLayouts =
    "1b3z1i514b2z2i1b3z3i3b1z1i24z 7i12z 9i 5i12z 5i12z - 5i12z 1i256b1024z - 7i12z 7i12z 2i 12i "
    "6i12z 1i12z 1i512b12i5b3z7i141b3z5i2h4i4h24i1h22z";

// A record's own codec is chosen by its C++ type, as the dispatcher's by the code.
bool Write(FILE* stream, void* memory, uint32_t type) {
    const AnyRecord record{memory};
    if (type == 0) return Write_ITCFileHeader(stream, record);
    if (type == 15) return Write_ITCEpochHeader(stream, record);
    if (type == 7) return Write_ITCSummedParameters(stream, record);
    return Write_ITCStimulusParameters(stream, memory, type);
}
bool Read(FILE* stream, void* memory, uint32_t type) {
    const AnyRecord record{memory};
    if (type == 0) return Read_ITCFileHeader(stream, record);
    if (type == 15) return Read_ITCEpochHeader(stream, record, 8);
    if (type == 7) return Read_ITCSummedParameters(stream, record);
    return Read_ITCStimulusParameters(stream, memory, type);
}

// The file's bytes; fields lie in memory as on file. What is no field's becomes 0xA5 there.
Bytes FileImage(const std::string& layout, Bytes& memory) {
    Bytes file;
    std::istringstream row(layout);
    size_t count = 0;
    for (char kind = 0; row >> count >> kind;) {
        for (size_t i = 0; i < count; ++i) {
            uint16_t half;
            uint32_t word;
            uint8_t* const element = &memory.at(file.size());
            std::memcpy(&half, element, 2);
            std::memcpy(&word, element, 4);
            if (kind == 'i') file = Join({file, Big32(word)});
            if (kind == 'h') file = Join({file, BigSamples({half})});
            if (kind == 'b' || kind == 'z') file.push_back(kind == 'b' ? *element : 0);
            if (kind == 'z') *element = 0xA5;
        }
    }
    std::fill(memory.begin() + static_cast<ptrdiff_t>(file.size()), memory.end(), 0xA5);
    return file;
}

// Any content, from a file that ends anywhere: what arrived is there, the rest as it was before.
TEST(RecordCodec, WritesEveryFieldAndReadsAsFarAsTheFileGoes) {
    PseudoRandom random;
    std::istringstream layouts(kLayouts);
    std::string layout;
    for (uint32_t type = 0; layouts >> layout; ++type) {
        SCOPED_TRACE(type);
        Bytes memory(2400);
        random.Fill(memory);
        const Stream own = StreamOver();
        EXPECT_TRUE(Write(own.get(), memory.data(), type));
        const Bytes file = FileImage(layout, memory);
        EXPECT_EQ(Content(own.get()), file);
        for (size_t size = 0; size <= file.size();
             size += file.size() > 99 && size < 880 ? 37 : 1) {
            const Stream cut = StreamOver(First(file, size)), again = StreamOver();
            Bytes taken(memory.size(), 0xA5), expected = taken;
            const bool done = Read(cut.get(), taken.data(), type);
            EXPECT_EQ(done, size == file.size());
            EXPECT_TRUE(!done || taken == memory);
            Write(again.get(), taken.data(), type);
            expected = FileImage(layout, expected);
            Put(expected, 0, First(file, size));
            EXPECT_EQ(Content(again.get()), expected) << size;
        }
    }
}

TEST(RecordCodec, TypesWithoutAnEncodingPrintAndCountAsDone) {
    for (const uint32_t type : {0U, 5U, 7U, 8U, 15U, 0xFFFFFFFFU}) {
        QuietOutput output;
        EXPECT_TRUE(Write_ITCStimulusParameters(nullptr, nullptr, type));
        EXPECT_TRUE(Read_ITCStimulusParameters(nullptr, nullptr, type));
        EXPECT_TRUE(output.Text().ends_with("stimulus-typeFail-point (itc-code/ITCFileIO:743)\n"));
    }
}

// Files of version 6 and older store no latency: it is the index of the first dynamic clamp, or the
// entries, + 2 * entries + 5, modulo 65536.
TEST(EpochHeaderOfOldFiles, HasALatencyFromItsSequence) {
    using Case = std::tuple<uint32_t, uint16_t, Bytes>;  // types, then on into the unit names
    for (const auto& [entries, latency, types] :
         {Case(3, 12, {1, 11, 1}), Case(2, 9, {11, 11}), Case(4, 17, {1, 1, 1, 1, 11}),
          Case(0, 5, {1, 11}), Case(0xFFFFFFFE, 1, {1, 11}), Case(100000, 37861, {1, 1, 1, 1}),
          Case(6, 23, {1, 1, 1, 1, 'p', 'A', 11})}) {
        Bytes file(912);
        Put(file, 580, Big32(entries));
        Put(file, 605, types);
        Put(file, 888, Hex("0B34"));  // where the stored latency begins, the search ends
        for (const int32_t version : {-128, 6, 7, 127}) {
            ITCEpochHeader header{};
            EXPECT_TRUE(Read_ITCEpochHeader(StreamOver(file).get(), &header, version));
            EXPECT_EQ(header.pointsLatency, version <= 6 ? latency : 0x0B34) << entries;
        }
    }
}

#if defined(__GLIBC__)  // whose streams can be functions
// Takes four bytes of its first write, and all of the others.
ssize_t TakeFour(void* cookie, const char* bytes, size_t size) {
    auto& taken = *static_cast<Bytes*>(cookie);
    const size_t count = taken.empty() ? 4 : size;
    taken.insert(taken.end(), bytes, bytes + count);
    return static_cast<ssize_t>(count);
}

// What was refused is passed over, not tried again.
TEST(Codecs, AFailureStopsNoLaterElement) {
    const ITCPulseParameters pulse{1, 2, 3, 4, 5, {}};
    for (const bool isRecord : {false, true}) {
        Bytes taken;
        const Stream stream(fopencookie(&taken, "wb", {nullptr, TakeFour, nullptr, nullptr}),
                            fclose);
        setvbuf(stream.get(), nullptr, _IONBF, 0);
        EXPECT_FALSE(isRecord ? Write_ITCPulseParameters(stream.get(), &pulse)
                              : WriteArray_int(stream.get(), &pulse.amplitude, 5));
        EXPECT_EQ(First(taken, 16), Hex("00000001 00000003 00000004 00000005"));
    }
}
#endif

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
    // A negative count must move nothing: taken for a very large one it would run through memory.
    for (const int none : {0, -1, INT32_MIN}) {
        EXPECT_EQ(write(nullptr, values.data(), none), none == 0);
        EXPECT_EQ(read(nullptr, taken.data(), none), none == 0);
    }
    EXPECT_EQ(taken.back(), 0);
    taken.assign(taken.size(), 0);  // of a value that is cut, the last byte stays
    EXPECT_FALSE(read(cut.get(), taken.data(), count));
    fseek(written.get(), 0, SEEK_CUR);  // as the standard asks between reading and writing
    write(written.get(), taken.data(), count);
    Bytes expected = file;
    expected.back() = 0;
    EXPECT_TRUE(First(Content(written.get()), 2 * file.size()) == Join({file, expected}));
}

// Beyond one block, and bit patterns that a conversion would not keep.
TEST(ArrayCodec, ElementsFollowInIndexOrderBigEndian) {
    ExpectArray<long>(WriteArray_long, ReadArray_long, {1, -2, 0x7FFFFF01},
                      Hex("00000001 FFFFFFFE 7FFFFF01"));
    ExpectArray<int16_t>(WriteArray_short, ReadArray_short, {0x1234, -2}, Hex("1234 FFFE"));
    std::vector<uint32_t> patterns(40000);
    PseudoRandom().Fill(patterns);
    for (uint32_t i = 0; i < 1000; ++i) patterns[i + 1] = 0x7F800000U + i;
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
