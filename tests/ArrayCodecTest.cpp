// Arrays of the data file: samples, conductances and the table of epoch positions.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <vector>

#include "Corvantis.h"
#include "FileBytes.h"

namespace {

using namespace corvantis_test;

template <class Element, bool (*Writer)(FILE*, const Element*, int),
          bool (*Reader)(FILE*, Element*, int)>
void ExpectArray(const std::array<Element, 3>& values, const Bytes& bytes) {
    const Stream written = StreamOver();
    EXPECT_TRUE(Writer(written.get(), values.data(), 3));
    EXPECT_EQ(Content(written.get()), bytes);
    EXPECT_FALSE(Writer(RefusingStream().get(), values.data(), 3));

    std::array<Element, 4> destination{0, 0, 0, 77};
    const Stream complete = StreamOver(Join({bytes, bytes}));
    EXPECT_TRUE(Reader(complete.get(), destination.data(), 3));
    EXPECT_TRUE(std::equal(values.begin(), values.end(), destination.begin()));
    EXPECT_EQ(destination[3], 77);
    EXPECT_EQ(ftell(complete.get()), static_cast<long>(bytes.size()));

    // A negative count must move nothing: taken for a very large one it would run through memory.
    destination.fill(77);
    for (const int count : {0, -1, INT32_MIN}) {
        EXPECT_EQ(Writer(complete.get(), values.data(), count), count == 0);
        EXPECT_EQ(Reader(complete.get(), destination.data(), count), count == 0);
    }
    EXPECT_TRUE(Writer(RefusingStream().get(), nullptr, 0));
    EXPECT_EQ(std::count(destination.begin(), destination.end(), 77), 4);
    EXPECT_EQ(Content(complete.get()), Join({bytes, bytes}));

    const Stream oneByteShort = StreamOver(First(bytes, bytes.size() - 1));
    destination = {};
    EXPECT_FALSE(Reader(oneByteShort.get(), destination.data(), 3));
    EXPECT_EQ(destination[0], values[0]);
    EXPECT_EQ(destination[1], values[1]);
}

TEST(ArrayCodec, ElementsFollowInIndexOrderBigEndian) {
    ExpectArray<long, WriteArray_long, ReadArray_long>({1, -2, 0x7FFFFFFF},
                                                       Hex("00000001 FFFFFFFE 7FFFFFFF"));
    ExpectArray<int32_t, WriteArray_int, ReadArray_int>({580, -1, 0x01020304},
                                                        Hex("00000244 FFFFFFFF 01020304"));
    ExpectArray<int16_t, WriteArray_short, ReadArray_short>({0x1234, -2, 0}, Hex("1234 FFFE 0000"));
    ExpectArray<float, WriteArray_float, ReadArray_float>({1.0F, -70.0F, 3200.0F},
                                                          Hex("3F800000 C28C0000 45480000"));
}

// Compared as bytes: among the patterns are NaNs of both kinds, whose bits must survive too.
TEST(ArrayCodec, FloatsOfEveryBitPatternComeBack) {
    std::vector<uint32_t> patterns(4000);
    PseudoRandom().Fill(patterns);
    for (uint32_t i = 0; i < 1000; ++i) patterns[i] = 0x7F800000U + i;
    for (uint32_t i = 0; i < 1000; ++i) patterns[1000 + i] = 0x0000807FU + (i << 16);
    std::vector<float> values(patterns.size()), readBack(patterns.size());
    std::memcpy(values.data(), patterns.data(), patterns.size() * 4);
    const Stream stream = StreamOver();
    ASSERT_TRUE(WriteArray_float(stream.get(), values.data(), 4000));
    const Bytes content = Content(stream.get());
    for (size_t i = 0; i < patterns.size(); ++i) ASSERT_EQ(Word(content, 4 * i), patterns[i]);
    rewind(stream.get());
    ASSERT_TRUE(ReadArray_float(stream.get(), readBack.data(), 4000));
    EXPECT_EQ(std::memcmp(readBack.data(), patterns.data(), patterns.size() * 4), 0);
}

// As far as the stream goes: a value that is cut keeps its last bytes.
TEST(ArrayCodec, WhatArrivesOfACutElementIsStored) {
    const Stream stream = StreamOver(Hex("01020304 0506"));
    std::array<int32_t, 3> values{7, 0x11223344, 7};
    EXPECT_FALSE(ReadArray_int(stream.get(), values.data(), 3));
    EXPECT_EQ(values, (std::array<int32_t, 3>{0x01020304, 0x05063344, 7}));
}

// Takes in no 0xEE; chosen by content, since the C library may cut and repeat what it writes.
struct RefusingSink {
    Bytes taken;
    Stream stream{fopencookie(this, "wb", {nullptr, Write, nullptr, nullptr})};

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
    const std::array<int32_t, 4> values{1, kRefused, 3, 4};
    EXPECT_FALSE(WriteArray_int(array.stream.get(), values.data(), 4));
    EXPECT_EQ(array.taken, Hex("00000001 00000003 00000004"));
    const ITCPulseParameters pulse{1, kRefused, 3, 4, 5, {}};
    EXPECT_FALSE(Write_ITCPulseParameters(record.stream.get(), &pulse));
    EXPECT_EQ(record.taken, Hex("00000001 00000003 00000004 00000005 00000000 00000000 00000000"));
}

}  // namespace
