// Writing and reading every record of the data file.
#include <gtest/gtest.h>

#include <cstdint>

#include "Corvantis.h"
#include "FileBytes.h"
#include "LibrarySession.h"
#include "RecordCases.h"

namespace {

using namespace corvantis_test;

class RecordCodec : public testing::TestWithParam<RecordCase> {};

TEST_P(RecordCodec, WritesItsBytesWhateverLiesInTheGaps) {
    const RecordCase& record = GetParam();
    const Stream stream = StreamOver();
    EXPECT_TRUE(record.write(stream.get(), record.memory.data()));
    EXPECT_EQ(Content(stream.get()), record.file);
    EXPECT_FALSE(record.write(RefusingStream().get(), record.memory.data()));
    if (record.type == kNoDispatch) return;
    const Stream dispatched = StreamOver();
    EXPECT_TRUE(Write_ITCStimulusParameters(dispatched.get(), record.memory.data(), record.type));
    EXPECT_EQ(Content(dispatched.get()), record.file);
    EXPECT_FALSE(
        Write_ITCStimulusParameters(RefusingStream().get(), record.memory.data(), record.type));
}

TEST_P(RecordCodec, ReadsItsFieldsAndLeavesTheGapsAlone) {
    const RecordCase& record = GetParam();
    Bytes disturbed = record.file;
    FillGaps(disturbed, record.gaps, 0xEE);
    const Stream stream = StreamOver(Join({disturbed, disturbed}));
    Bytes memory(record.memory.size(), kGapFill);
    EXPECT_TRUE(record.read(stream.get(), memory.data()));
    EXPECT_EQ(memory, record.memory);
    EXPECT_EQ(ftell(stream.get()), static_cast<long>(record.file.size()));
    if (record.type == kNoDispatch) return;
    memory.assign(memory.size(), kGapFill);
    EXPECT_TRUE(Read_ITCStimulusParameters(stream.get(), memory.data(), record.type));
    EXPECT_EQ(memory, record.memory);
    EXPECT_EQ(ftell(stream.get()), static_cast<long>(2 * record.file.size()));
}

TEST_P(RecordCodec, FailsWhereverTheStreamEndsInside) {
    const RecordCase& record = GetParam();
    Bytes memory(record.memory.size());
    for (size_t size = 0; size < record.file.size(); ++size) {
        const Bytes shorter = First(record.file, size);
        ASSERT_FALSE(record.read(StreamOver(shorter).get(), memory.data())) << size;
        if (record.type == kNoDispatch) continue;
        ASSERT_FALSE(
            Read_ITCStimulusParameters(StreamOver(shorter).get(), memory.data(), record.type))
            << size;
    }
}

TEST_P(RecordCodec, GivesBackAnyContent) {
    const RecordCase& record = GetParam();
    PseudoRandom random;
    for (int repetition = 0; repetition < 50; ++repetition) {
        Bytes memory(record.memory.size());
        random.Fill(memory);
        FillGaps(memory, record.gaps, kGapFill);
        const Stream stream = StreamOver();
        ASSERT_TRUE(record.write(stream.get(), memory.data()));
        rewind(stream.get());
        Bytes readBack(memory.size(), kGapFill);
        ASSERT_TRUE(record.read(stream.get(), readBack.data()));
        ASSERT_EQ(readBack, memory);
    }
}

INSTANTIATE_TEST_SUITE_P(All, RecordCodec, testing::ValuesIn(RecordCases()),
                         [](const auto& each) { return each.param.name; });

TEST(StimulusDispatcher, TypesWithoutAnEncodingPrintAndCountAsDone) {
    for (const uint32_t type : {0U, 5U, 7U, 8U, 15U, 255U, 0xFFFFFFFFU, 0xFFFFFFF5U}) {
        const Stream stream = StreamOver(Bytes(2000, 1));
        fseek(stream.get(), 3, SEEK_SET);
        Bytes record(sizeof(ITCSummedParameters), kGapFill);
        QuietOutput output;
        EXPECT_TRUE(Write_ITCStimulusParameters(stream.get(), record.data(), type));
        EXPECT_TRUE(Read_ITCStimulusParameters(stream.get(), record.data(), type));
        EXPECT_EQ(output.Text(),
                  "FileIO: Unrecognized stimulus-typeFail-point (itc-code/ITCFileIO:700)\n"
                  "FileIO: Unrecognized stimulus-typeFail-point (itc-code/ITCFileIO:743)\n")
            << type;
        EXPECT_EQ(ftell(stream.get()), 3);
        EXPECT_EQ(record, Bytes(record.size(), kGapFill));
        EXPECT_EQ(Content(stream.get()), Bytes(2000, 1));
    }
}

}  // namespace
