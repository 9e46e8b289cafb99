// Single values, byte order and padding on a stream.
#include "ITCFileIO/ValueCodec.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <cstring>
#include <limits>

#include "FileBytes.h"

namespace {

using namespace corvantis_test;

template <class FileType, class MemoryType>
void ExpectPair(MemoryType value, const Bytes& bytes) {
    const Stream stream = StreamOver();
    EXPECT_TRUE((corvantis::WriteValue<FileType, MemoryType>(stream.get(), value)));
    EXPECT_EQ(Content(stream.get()), bytes);
    MemoryType destination{};
    rewind(stream.get());
    EXPECT_TRUE((corvantis::ReadValue<FileType, MemoryType>(stream.get(), destination)));
    EXPECT_EQ(std::memcmp(&destination, &value, sizeof value), 0);
    const Stream shorter = StreamOver(Bytes(bytes.size() - 1));
    EXPECT_FALSE((corvantis::ReadValue<FileType, MemoryType>(shorter.get(), destination)));
    const Stream refusing = RefusingStream();
    setvbuf(refusing.get(), nullptr, _IONBF, 0);
    EXPECT_FALSE((corvantis::WriteValue<FileType, MemoryType>(refusing.get(), value)));
}

TEST(ValueCodec, EveryPairPutsItsMostSignificantByteFirst) {
    ExpectPair<unsigned char, unsigned char>(0xC8, Hex("C8"));
    ExpectPair<signed char, signed char>(-56, Hex("C8"));
    ExpectPair<signed char, char>(static_cast<char>(-56), Hex("C8"));
    ExpectPair<unsigned short, unsigned short>(0x1234, Hex("12 34"));
    ExpectPair<short, short>(-2, Hex("FF FE"));
    ExpectPair<unsigned int, unsigned int>(0x89ABCDEF, Hex("89 AB CD EF"));
    ExpectPair<int, int>(-0x01020304, Hex("FE FD FC FC"));
    ExpectPair<int, long>(1, Hex("00 00 00 01"));
    ExpectPair<int, long>(std::numeric_limits<int>::min(), Hex("80 00 00 00"));
    ExpectPair<float, float>(3200.0F, Hex("45 48 00 00"));
    ExpectPair<long long, long long>(-0x0102030405060708, Hex("FE FD FC FB FA F9 F8 F8"));
    ExpectPair<unsigned long long, unsigned long long>(0x0123456789ABCDEF,
                                                       Hex("01 23 45 67 89 AB CD EF"));
    // Turned round, these ordinary numbers look like signalling NaNs, which some processors alter
    // while they carry them.
    for (const uint32_t pattern : {0x0100807FU, 0x010080FFU, 0x3412A07FU, 0x80000000U})
        ExpectPair<float, float>(std::bit_cast<float>(pattern), Big32(pattern));
}

TEST(ValueCodec, PaddingIsWrittenAsZerosAndSkippedUnread) {
    const Stream stream = StreamOver(Bytes(20, 0xEE));
    EXPECT_TRUE(corvantis::WritePadding(stream.get(), 12));
    EXPECT_TRUE(corvantis::WritePadding(stream.get(), 0));
    EXPECT_EQ(Content(stream.get()), Join({Bytes(12), Bytes(8, 0xEE)}));
    fseek(stream.get(), 2, SEEK_SET);
    EXPECT_TRUE(corvantis::SkipPadding(stream.get(), 12));
    EXPECT_TRUE(corvantis::SkipPadding(stream.get(), 0));
    EXPECT_EQ(ftell(stream.get()), 14);
    EXPECT_FALSE(corvantis::WritePadding(RefusingStream().get(), 1));
}

}  // namespace
