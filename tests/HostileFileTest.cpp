// Damaged and malicious files: a documented result, and nothing read or written out of place.
#include <gtest/gtest.h>

#include <algorithm>
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
    const Bytes sum =
        Join({EpochHeaderBytes(100, 4, {7}), Hex("00000002 03 03"), Bytes(254 + 1024)});
    return DataFileBytes({Join({sum, PulseBytes(), PulseBytes(), BigSamples({1, 2, 3, 4})})});
}

class HostileFile : public RecordingTest {
  protected:
    HostileFile() : RecordingTest(1000) {}
    const QuietOutput quiet;
};

struct Damage {
    const char* name;
    std::vector<std::pair<size_t, Bytes>> places;
    int32_t parameters, samples, stimulus;
};

std::vector<Damage> Damages() {
    const Bytes minusOne = Hex("FFFFFFFF"), billions = Hex("40000000 00000004");
    const Bytes noiseBefore = Hex("00000005 00000000 00000001 000003EC 00000000 FFFFFC18 00000001");
    const Bytes withoutBytes = Join({Big32(256), Bytes(256, 5)});
    return {{"none", {}, 0, 0, 0},
            {"count 257", {{kCount, Big32(257)}}, 7, 7, 7},
            {"count 256 of file waves", {{kCount, withoutBytes}}, 0, 0, 0},
            {"count -1, nothing to sum", {{kCount, minusOne}}, 0, 0, 0},
            {"a sum in the sum", {{kComponentTypes, {7}}}, 7, 7, 7},
            {"stimulus of type 15", {{kTypes, {15}}}, 7, 7, 7},
            {"more samples than the file", {{kPoints, Big32(100)}}, 0, 7, 0},
            {"more samples than the buffers", {{kPoints, Big32(1001)}}, 0, 4, 4},
            {"2^32 samples", {{kPoints, billions}, {kTypes, Bytes(4, 5)}}, 0, 4, 4},
            {"component longer than the epoch", {{kComponents + 8, Big32(1000)}}, 0, 0, 2},
            {"noise before the buffer", {{kTypes, {9}}, {kCount, noiseBefore}}, 0, 0, 2},
            {"epoch beyond the file", {{kTable, Hex("FFFFFF00")}}, 7, 7, 7},
            {"negative points", {{kPoints, minusOne}}, 0, 7, 7},
            {"negative points of conductances", {{kPoints, minusOne}, {kTypes, {11}}}, 7, 7, 7},
            {"negative entries", {{kEntries, minusOne}}, 0, 7, 7}};
}

TEST_F(HostileFile, EveryDamageHasItsResult) {
    for (const Damage& damage : Damages()) {
        SCOPED_TRACE(damage.name);
        Bytes file = SumFileBytes();
        for (const auto& [offset, bytes] : damage.places) Put(file, offset, bytes);
        Open(file);
        session.input.assign(1000, 0xABCD);
        session.output = session.input;
        EXPECT_EQ(Results({ITCEpochParameters(0), ITCRetrieveEpoch(0), ITCRetrieveEpochStm(0)}),
                  Results({damage.parameters, damage.samples, damage.stimulus}));
        const Samples untouched(1000, 0xABCD);
        EXPECT_TRUE(damage.stimulus == 0 || session.output == untouched);
        EXPECT_TRUE(damage.parameters == 0 || session.input == untouched);
        FreeChannels();
    }
}

TEST_F(HostileFile, SlotsNeverKeepAFreedRecord) {
    Open(SumFileBytes());
    ASSERT_EQ(Results({ITCRetrieveEpochStm(0), ITCFreeParams(0), ITCEpochParameters(0)}),
              Results(3));
    EXPECT_EQ(session.output[1], 1990);
    epochhdr->stimType[0] = 99;
    EXPECT_EQ(ITCReadStmParams(0), ITC_STIMULUS_ERROR);
    EXPECT_EQ(StmParameters[0], nullptr);
    epochhdr->stimType[0] = 7;  // the stream stands at the samples: too few bytes for a sum
    EXPECT_EQ(ITCReadStmParams(0), ITC_FILE_ERROR);
    Bytes file = SumFileBytes();
    Put(file, kCount, Join({Big32(257), Bytes(256, 5)}));
    Open(file);
    EXPECT_EQ(ITCEpochParameters(0), ITC_FILE_ERROR);
    EXPECT_EQ(*static_cast<int32_t*>(StmParameters[0]), 0) << "components of a sum too long";
}

// An epoch replaces all four type bytes, but only the records of its own entries.
TEST_F(HostileFile, ATypeByteOfAnotherRecordIsNotBelieved) {
    for (const uint8_t type : Bytes{7, 2}) {
        const ITCGClampParameters eightBytes{1e9F, 1e9F};
        ASSERT_EQ(ITCGClampParams(1, &eightBytes, 6), 0);
        Bytes file = PulseFileBytes();
        Put(file, kTypes + 1, {type});
        Open(file);
        ASSERT_EQ(ITCEpochParameters(0), ITC_SUCCESS);
        EXPECT_NE(StmParameters[1], nullptr);
        int32_t seed = -1;
        SetUpAcquisition(2, kPulseEpochPoints);
        EXPECT_EQ(
            Results({ITCRetrieveRandomSeed(&seed, 1), ITCNewRandomSeed(1, 1, 0), ITCUpdateStm()}),
            Results(3, ITC_STIMULUS_ERROR));
    }
}

}  // namespace
