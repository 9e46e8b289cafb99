// Interleaving, and what reaches a file, against one element at a time.
#include <cstdio>
#include <cstring>
#include <memory>

#include "SameBits.h"
#include "reference/Definitions.h"

namespace corvantis_test {
namespace {

std::vector<uint16_t> RandomSamples(size_t count) {
    std::mt19937 source(7);
    std::vector<uint16_t> samples(count);
    for (uint16_t& sample : samples) sample = static_cast<uint16_t>(source());
    return samples;
}

// The arrays begin `distance` apart in one block, the stream at `start` of it: they may overlap.
void ExpectSameMoves(int32_t entries, int32_t points, size_t distance, size_t start) {
    const std::vector<uint16_t> before = RandomSamples(200000);
    for (const bool split : {false, true}) {
        std::vector<uint16_t> blocks[2] = {before, before};
        for (size_t form = 0; form < 2; ++form) {
            uint16_t* const block = blocks[form].data();
            std::vector<uint16_t*> perEntry;
            for (int32_t c = 0; c < entries; ++c) {
                perEntry.push_back(block + static_cast<size_t>(c) * distance);
            }
            const auto move = form == 0 ? ITCInterleaveData : definition::Interleave;
            const auto part = form == 0 ? ITCSplitData : definition::Split;
            if (split) part(block + start, perEntry.data(), entries, points);
            if (!split) move(block + start, perEntry.data(), entries, points);
        }
        EXPECT_EQ(CountDifferences(blocks[0], blocks[1]), 0u)
            << entries << " entries, " << points << " points, stream at " << start;
    }
}

TEST(TransferExactTest, InterleavingAlsoWhereArraysAndStreamOverlap) {
    for (int32_t entries = 0; entries <= 6; ++entries) {
        for (const int32_t points : {-1, 0, 1, 2, 7, 31, 64, 100, 1000, 10001}) {
            ExpectSameMoves(entries, points, 10001, 100000);
            ExpectSameMoves(entries, points, 10001, 5);
            ExpectSameMoves(entries, points, 10, 40);
            ExpectSameMoves(entries, points, 0, 0);
        }
    }
}

using Stream = std::unique_ptr<FILE, int (*)(FILE*)>;
Stream TemporaryStream() { return {std::tmpfile(), std::fclose}; }

std::vector<uint8_t> Content(FILE* stream) {
    std::fflush(stream);
    std::vector<uint8_t> bytes(static_cast<size_t>(std::ftell(stream)));
    std::rewind(stream);
    EXPECT_EQ(std::fread(bytes.data(), 1, bytes.size(), stream), bytes.size());
    return bytes;
}

ITCEpochHeader RandomHeader() {
    const std::vector<uint16_t> bits = RandomSamples(sizeof(ITCEpochHeader) / 2);
    ITCEpochHeader header;
    std::memcpy(&header, bits.data(), sizeof header);
    return header;
}

TEST(TransferExactTest, EpochHeadersOfRandomBits) {
    const Stream library = TemporaryStream();
    const Stream plainStream = TemporaryStream();
    const ITCEpochHeader header = RandomHeader();
    EXPECT_TRUE(Write_ITCEpochHeader(library.get(), &header));
    EXPECT_TRUE(definition::WriteEpochHeader(plainStream.get(), header));
    EXPECT_EQ(Content(library.get()), Content(plainStream.get()));
    std::rewind(library.get());
    std::rewind(plainStream.get());
    ITCEpochHeader headers[2];
    std::memset(headers, 0x33, sizeof headers);
    EXPECT_TRUE(Read_ITCEpochHeader(library.get(), &headers[0], 8));
    EXPECT_TRUE(definition::ReadEpochHeader(plainStream.get(), headers[1]));
    EXPECT_EQ(std::memcmp(&headers[0], &headers[1], sizeof headers[0]), 0);
}

TEST(TransferExactTest, ArraysOfEveryLength) {
    const std::vector<uint16_t> samples = RandomSamples(300001);
    const auto* values = reinterpret_cast<const int16_t*>(samples.data());
    for (const int32_t count : {0, 1, 4095, 4096, 4097, 32767, 32768, 32769, 65537, 300001}) {
        const Stream library = TemporaryStream();
        const Stream plainStream = TemporaryStream();
        EXPECT_TRUE(WriteArray_short(library.get(), values, count));
        EXPECT_TRUE(definition::WriteShorts(plainStream.get(), values, static_cast<size_t>(count)));
        EXPECT_EQ(Content(library.get()), Content(plainStream.get())) << count;
        std::rewind(library.get());
        std::vector<int16_t> read(static_cast<size_t>(count));
        EXPECT_TRUE(ReadArray_short(library.get(), read.data(), count));
        EXPECT_TRUE(std::equal(read.begin(), read.end(), values)) << count;
        int16_t behind = 0;
        EXPECT_FALSE(ReadArray_short(library.get(), &behind, 1));
    }
}

}  // namespace
}  // namespace corvantis_test
