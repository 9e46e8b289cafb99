// Writing and reading every record of the data file.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>

#include "Corvantis.h"
#include "FileBytes.h"
#include "LibrarySession.h"
#include "RecordCases.h"

namespace {

using namespace corvantis_test;

class RecordCodec : public testing::TestWithParam<RecordCase> {
  protected:
    // By the record's own function and, if its type is dispatched, by the dispatcher.
    void ExpectWritten(FILE* own, FILE* dispatched, bool succeeds) {
        EXPECT_EQ(record.write(own, record.memory.data()), succeeds);
        if (record.type == kNoDispatch) return;
        EXPECT_EQ(Write_ITCStimulusParameters(dispatched, record.memory.data(), record.type),
                  succeeds);
    }
    void ExpectRead(const Bytes& bytes, const Bytes& expected) {
        Bytes own(record.memory.size(), kGapFill), dispatched = own;
        const bool succeeds = bytes.size() >= record.file.size();
        const Stream stream = StreamOver(bytes), again = StreamOver(bytes);
        ASSERT_EQ(record.read(stream.get(), own.data()), succeeds) << bytes.size();
        EXPECT_EQ(ftell(stream.get()),
                  static_cast<long>(std::min(bytes.size(), record.file.size())));
        EXPECT_TRUE(!succeeds || own == expected) << testing::PrintToString(own);
        if (record.type == kNoDispatch) return;
        ASSERT_EQ(Read_ITCStimulusParameters(again.get(), dispatched.data(), record.type),
                  succeeds);
        EXPECT_EQ(dispatched, own);
    }

    const RecordCase& record = GetParam();
};

TEST_P(RecordCodec, WritesItsBytesWhateverLiesInTheGaps) {
    const Stream own = StreamOver(), dispatched = StreamOver();
    ExpectWritten(own.get(), dispatched.get(), true);
    EXPECT_EQ(Content(own.get()), record.file);
    EXPECT_EQ(Content(dispatched.get()), record.type == kNoDispatch ? Bytes() : record.file);
    ExpectWritten(RefusingStream().get(), RefusingStream().get(), false);
}

TEST_P(RecordCodec, ReadsItsFieldsAndLeavesTheGapsAlone) {
    Bytes disturbed = record.file;
    FillGaps(disturbed, record.gaps, 0xEE);
    ExpectRead(Join({disturbed, disturbed}), record.memory);
    for (size_t size = 0; size < record.file.size(); ++size) ExpectRead(First(disturbed, size), {});
}

TEST_P(RecordCodec, GivesBackAnyContent) {
    PseudoRandom random;
    for (int repetition = 0; repetition < 50; ++repetition) {
        Bytes memory(record.memory.size());
        random.Fill(memory);
        FillGaps(memory, record.gaps, kGapFill);
        const Stream stream = StreamOver();
        ASSERT_TRUE(record.write(stream.get(), memory.data()));
        ExpectRead(Content(stream.get()), memory);
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

// Files of version 6 and older store no latency. Expected: index of the first dynamic clamp, or
// the entries, + 2 * entries + 5.
TEST(EpochHeaderOfOldFiles, HasALatencyFromItsSequence) {
    struct Case {
        int32_t entries;
        uint16_t latency;
        Bytes bytesFromTypes;  // the stimulus types, then on into the unit names
    };
    for (const Case& each : {
             Case{3, 12, {1, 11, 1}},
             Case{3, 13, {1, 1, 11}},
             Case{2, 11, {1, 2}},
             Case{2, 11, {1, 2, 11}},
             Case{2, 9, {11, 11}},
             Case{4, 17, {1, 1, 1, 1, 11}},
             Case{0, 5, {1, 11}},
             Case{-2, 1, {1, 11}},
             Case{-3, 65535, {}},
             Case{5, 19, {1, 1, 1, 1, 11}},            // first letter of the first output unit
             Case{6, 23, {1, 1, 1, 1, 'p', 'A', 11}},  // 6 + 12 + 5
             Case{100000, 37861, {1, 1, 1, 1}},        // 300005 modulo 65536
             Case{INT32_MAX, 2, {1, 1, 1, 1, 'p'}},    // 3 * 65535 + 5 modulo 65536
             Case{INT32_MIN, 5, {1, 11}},
         }) {
        Bytes file(912);
        Put(file, 580, Big32(static_cast<uint32_t>(each.entries)));
        Put(file, 605, each.bytesFromTypes);
        Put(file, 888, Hex("1234"));
        for (const int32_t version : {-128, 0, 1, 5, 6, 7, 8, 9, 127}) {
            ITCEpochHeader header{};
            EXPECT_TRUE(Read_ITCEpochHeader(StreamOver(file).get(), &header, version));
            EXPECT_EQ(header.pointsLatency, version <= 6 ? each.latency : 0x1234)
                << each.entries << ", " << version;
        }
        ITCEpochHeader header{};
        EXPECT_FALSE(Read_ITCEpochHeader(StreamOver(First(file, 911)).get(), &header, 6));
    }
}

}  // namespace
