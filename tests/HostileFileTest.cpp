// Damaged and malicious files: a documented result, and nothing read or written out of place.
#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "Corvantis.h"
#include "FileBytes.h"
#include "LibrarySession.h"
#include "PulseEpoch.h"

namespace {

using namespace corvantis_test;

// One epoch of a sum of two pulses, four points. Offsets: the header's fields at 580 + theirs,
// the record's count at 1492 and types at 1496, components at 2776, samples at 2840, table at 2848.
constexpr size_t kPoints = 580 + 576, kEntries = 580 + 580, kTypes = 580 + 605;
constexpr size_t kCount = 1492, kComponentTypes = 1496, kComponents = 2776, kTable = 2848;

Bytes SumFileBytes() {
    return Join({FileHeaderBytes(8, 1, kTable), EpochHeaderBytes(100, 4, {7}),
                 Hex("00000002 03 03"), Bytes(254 + 1024), PulseBytes(), PulseBytes(),
                 BigSamples({1, 2, 3, 4}), Big32(580)});
}

class HostileFile : public RecordingTest {
  protected:
    HostileFile() : RecordingTest(1000) {}
    int32_t Open(const Bytes& bytes) const {
        WriteFile(path, bytes);
        ITCCloseFile();
        return RecordingTest::Open();
    }

    const QuietOutput quiet;
};

struct Damage {
    const char* name;
    std::vector<std::pair<size_t, Bytes>> places;
    int32_t parameters, samples, stimulus;
};

std::vector<Damage> Damages() {
    const Bytes minusOne = Hex("FFFFFFFF"), most = Hex("7FFFFFFF"), least = Hex("80000000");
    const Bytes noiseBefore =
        Join({Big32(5), Big32(0), Big32(1), Big32(1004), Big32(0), Big32(-1000), Big32(1)});
    const std::vector<std::pair<size_t, Bytes>> wrapping = {
        {kPoints, Big32(0x40000000)}, {kEntries, Big32(4)}, {kTypes, {5, 5, 5, 5}}};
    return {
        {"none", {}, 0, 0, 0},
        {"count 257", {{kCount, Big32(257)}}, 7, 7, 7},
        {"count 256 of type 0", {{kCount, Big32(256)}}, 7, 7, 7},
        {"most components", {{kCount, most}}, 7, 7, 7},
        {"count -1, nothing to sum", {{kCount, minusOne}}, 0, 0, 0},
        {"fewest components", {{kCount, least}}, 0, 0, 0},
        {"a sum in the sum", {{kComponentTypes, {7}}}, 7, 7, 7},
        {"component of type 15", {{kComponentTypes + 1, {15}}}, 7, 7, 7},
        {"component of type -1", {{kComponentTypes + 1, {0xFF}}}, 7, 7, 7},
        {"stimulus of type 0", {{kTypes, {0}}}, 7, 7, 7},
        {"stimulus of type 15", {{kTypes, {15}}}, 7, 7, 7},
        {"stimulus of type -1", {{kTypes, {0xFF}}}, 7, 7, 7},
        {"5 entries", {{kEntries, Big32(5)}}, 7, 7, 7},
        {"most entries", {{kEntries, most}}, 7, 7, 7},
        {"2 entries, the second of type 0", {{kEntries, Big32(2)}}, 7, 7, 7},
        {"more samples than the file", {{kPoints, Big32(100)}}, 0, 7, 0},
        {"more samples than the buffers", {{kPoints, Big32(1001)}}, 0, 4, 4},
        {"most samples", {{kPoints, most}}, 0, 4, 4},
        {"2^32 samples", wrapping, 0, 4, 4},
        {"most points of no entry", {{kPoints, most}, {kEntries, Big32(0)}}, 0, 0, 0},
        {"component longer than the epoch", {{kComponents + 8, Big32(1000)}}, 0, 0, 2},
        {"longest component", {{kComponents + 8, most}}, 0, 0, 2},
        {"noise before the buffer", {{kTypes, {9}}, {kCount, noiseBefore}}, 0, 0, 2},
        {"epoch beyond the file", {{kTable, Hex("FFFFFF00")}}, 7, 7, 7},
        {"epoch at the end of the file", {{kTable, Big32(kTable)}}, 7, 7, 7},
    };
}

TEST_F(HostileFile, EveryDamageHasItsResult) {
    for (const Damage& damage : Damages()) {
        SCOPED_TRACE(damage.name);
        Bytes file = SumFileBytes();
        for (const auto& [offset, bytes] : damage.places) Put(file, offset, bytes);
        ASSERT_EQ(Open(file), ITC_SUCCESS);
        EXPECT_EQ(ITCEpochParameters(0), damage.parameters);
        EXPECT_EQ(ITCRetrieveEpoch(0), damage.samples);
        session.output.assign(session.output.size(), 0xABCD);
        EXPECT_EQ(ITCRetrieveEpochStm(0), damage.stimulus);
        if (damage.stimulus != ITC_SUCCESS) {
            EXPECT_EQ(session.output, Samples(session.output.size(), 0xABCD));
        }
    }
}

// Negative lengths move nothing, forwards or backwards.
TEST_F(HostileFile, NegativeLengthsTransferNoSamples) {
    session.input.assign(session.input.size(), 0xABCD);
    session.output = session.input;
    for (const uint32_t number : {0xFFFFFFFFU, 0x80000000U, 0xFFFFFF00U}) {
        for (const size_t field : {kPoints, kEntries}) {
            for (const uint8_t type : Bytes{7, 11, 2, 14}) {
                Bytes file = SumFileBytes();
                Put(file, field, Big32(number));
                Put(file, kTypes, {type});
                ASSERT_EQ(Open(file), ITC_SUCCESS);
                EXPECT_NE(ITCRetrieveEpoch(0), ITC_SUCCESS);
                EXPECT_NE(ITCRetrieveEpochStm(0), ITC_SUCCESS);
                EXPECT_EQ(session.input, Samples(1000, 0xABCD));
                EXPECT_EQ(session.output, session.input);
            }
        }
    }
}

// With the table in front, every cut falls into the epoch.
TEST_F(HostileFile, ACutEpochIsAFileError) {
    Bytes file = SumFileBytes();
    Put(file, 540, Big32(580));
    file.insert(file.begin() + 580, 4, 0);
    Put(file, 580, Big32(584));
    file.erase(file.end() - 4, file.end());
    ASSERT_EQ(Open(file), ITC_SUCCESS);
    ASSERT_EQ(ITCRetrieveEpoch(0), ITC_SUCCESS);
    for (size_t size = 584; size < file.size(); size += size + 40 < file.size() ? 13 : 1) {
        ASSERT_EQ(Open(First(file, size)), ITC_SUCCESS);
        EXPECT_EQ(ITCRetrieveEpoch(0), ITC_FILE_ERROR) << size;
    }
}

TEST_F(HostileFile, RandomDamageGivesADocumentedResult) {
    const std::set<int32_t> documented{ITC_SUCCESS, ITC_STIMULUS_ERROR, ITC_TOO_LARGE,
                                       ITC_OUT_OF_MEMORY, ITC_FILE_ERROR};
    PseudoRandom random;
    const Bytes sound = SumFileBytes();
    const size_t places[] = {536, 540, kPoints, kEntries, kTypes, kCount, kComponents, kTable};
    for (int repetition = 0; repetition < 400; ++repetition) {
        Bytes file = sound;
        for (int i = 0; i < 3; ++i) {
            const size_t place = random.Next() % 2 == 0 ? places[random.Next() % 8]
                                                        : 580 + random.Next() % (file.size() - 580);
            file.at(std::min(place + random.Next() % 32, file.size() - 1)) =
                static_cast<uint8_t>(random.Next() % 3 == 0 ? random.Next() : random.Next() % 16);
        }
        const int32_t opened = Open(file);
        EXPECT_TRUE(opened == ITC_SUCCESS || opened == ITC_FILE_ERROR);
        EXPECT_TRUE(documented.contains(ITCRetrieveEpoch(0)));
        EXPECT_TRUE(documented.contains(ITCRetrieveEpochStm(0)));
        for (const uint32_t channel : {0U, 1U, 2U, 3U}) EXPECT_EQ(ITCFreeParams(channel), 0);
    }
}

TEST_F(HostileFile, SlotsNeverKeepAFreedRecord) {
    ASSERT_EQ(Open(SumFileBytes()), ITC_SUCCESS);
    ASSERT_EQ(ITCEpochParameters(0), ITC_SUCCESS);
    ASSERT_EQ(ITCRetrieveEpochStm(0), ITC_SUCCESS);
    EXPECT_EQ(session.output[1], 1990);
    EXPECT_EQ(ITCFreeParams(0), ITC_SUCCESS);
    ASSERT_EQ(ITCEpochParameters(0), ITC_SUCCESS);
    epochhdr->stimType[0] = 99;
    EXPECT_EQ(ITCReadStmParams(0), ITC_STIMULUS_ERROR);
    EXPECT_EQ(StmParameters[0], nullptr);
    epochhdr->stimType[0] = 7;  // the stream stands at the samples: too few bytes for a sum
    EXPECT_EQ(ITCReadStmParams(0), ITC_FILE_ERROR);
    EXPECT_EQ(ITCFreeParams(0), ITC_SUCCESS);
    EXPECT_EQ(ITCReadStmParams(4), ITC_STIMULUS_ERROR);
}

// An epoch replaces all four type bytes, but only the records of its own entries.
TEST_F(HostileFile, ATypeByteOfAnotherRecordIsNotBelieved) {
    for (const uint8_t type : Bytes{7, 2, 12, 1}) {
        SetUpPulseEpoch();
        const ITCGClampParameters eightBytes{1e9F, 1e9F};
        ASSERT_EQ(ITCGClampParams(1, &eightBytes, 6), 0);
        Bytes file = PulseFileBytes();
        Put(file, kTypes + 1, {type});
        ASSERT_EQ(Open(file), ITC_SUCCESS);
        ASSERT_EQ(ITCEpochParameters(0), ITC_SUCCESS);
        EXPECT_NE(StmParameters[1], nullptr);
        EXPECT_EQ(epochhdr->stimType[1], type);
        int32_t seed = -1;
        EXPECT_EQ(ITCRetrieveRandomSeed(&seed, 1), ITC_STIMULUS_ERROR);
        EXPECT_EQ(ITCNewRandomSeed(1, 1, 0), ITC_STIMULUS_ERROR);
        SetUpAcquisition(2, kPulseEpochPoints);
        EXPECT_EQ(ITCUpdateStm(), ITC_STIMULUS_ERROR);
        EXPECT_EQ(ITCFreeParams(1), ITC_SUCCESS);
    }
}

}  // namespace
