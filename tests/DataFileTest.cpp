// Creating, opening and closing the data file, and what a saved epoch adds to it, byte by byte.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <tuple>
#include <vector>

#include "Corvantis.h"
#include "FileBytes.h"
#include "LibrarySession.h"
#include "PulseEpoch.h"
#include "StimulusRecords.h"

namespace {

using namespace corvantis_test;

using DataFile = RecordingTest;

// The first match of a pattern, or the pattern itself; a tilde only once the file is there.
TEST_F(DataFile, IsCreatedWithItsHeaderAndOverwrittenOnlyOnRequest) {
    const std::string home = std::getenv("HOME") == nullptr ? "/" : std::getenv("HOME");
    setenv("HOME", folder.path.c_str(), 1);
    const Bytes precious = Text("a year of work", 2000), blank = FileHeaderBytes(8, 0, 0);
    for (const char* name : {"b.itc", "c.itc", "a.dat"}) WriteFile(folder.File(name), precious);
    const auto expect = [&](const std::string& pattern, int32_t overwrite, bool succeeds,
                            const char* name) {
        const std::string path = pattern[0] == '~' ? pattern : folder.File(pattern);
        const int32_t result = ITCCreateFile(path.c_str(), overwrite);
        EXPECT_EQ(result, succeeds ? ITC_SUCCESS : ITC_FILE_ERROR) << pattern;
        EXPECT_EQ(ITCCloseFile(), succeeds ? 0 : -1);
        EXPECT_EQ(FileContent(folder.File(name)) == blank, succeeds) << pattern;
    };
    expect("b.itc", 0, false, "b.itc");
    expect("~/b.itc", 0, false, "b.itc");
    expect("*.itc", 1, true, "b.itc");
    expect("?.dat", 0, false, "a.dat");
    expect("run*", 0, true, "run*");
    expect("~/c.itc", 1, true, "c.itc");
    expect("~/new.itc", 0, false, "new.itc");
    EXPECT_EQ(FileContent(folder.File("a.dat")), precious);
    setenv("HOME", home.c_str(), 1);
}

TEST_F(DataFile, OpensWithItsTableOrNotAtAll) {
    struct Case {
        const char* name;
        Bytes file;
        int32_t result;
        size_t positions;  // of a loaded table
    };
    const uint32_t table[] = {580, 0x89ABCDEF};
    const auto with = [&](uint8_t version, uint32_t epochs, uint32_t position) {
        return Join({FileHeaderBytes(version, epochs, position), Big32(580), Big32(table[1])});
    };
    for (const Case& each : {Case{"no bytes", {}, 7, 0},
                             {"one byte short", First(with(8, 0, 580), 579), 7, 0},
                             {"no epochs", FileHeaderBytes(8, 0, 580), 0, 0},
                             {"no epochs, table anywhere", FileHeaderBytes(8, 0, 0xFFFFFFF0), 0, 0},
                             {"version 8", with(8, 2, 580), 0, 2},
                             {"version 1", with(1, 2, 580), 0, 2},
                             {"version 9", with(9, 2, 580), 9, 2},
                             {"version 127", with(127, 2, 580), 9, 2},
                             {"version -128", with(0x80, 2, 580), 0, 2},
                             {"an epoch too few", with(8, 3, 580), 7, 2},
                             {"table cut", with(8, 2, 582), 7, 0},
                             {"table at the end", with(8, 1, 588), 7, 0},
                             {"table beyond the file", with(8, 1, 0xFFFFFFF0), 7, 0},
                             {"-1 epochs", with(8, 0xFFFFFFFF, 580), 7, 0},
                             {"fewest epochs", with(8, 0x80000000, 580), 7, 0},
                             {"most epochs", with(8, 0x7FFFFFFF, 580), 7, 2},
                             {"a table that wraps to 8 bytes", with(8, 0x40000002, 580), 7, 2}}) {
        SCOPED_TRACE(each.name);
        WriteFile(path, each.file);
        EXPECT_EQ(Open(), each.result);
        for (size_t i = 0; i < each.positions; ++i) EXPECT_EQ(EpochPosition[i], table[i]);
        EXPECT_EQ(ITCRetrieveEpoch(0), ITC_FILE_ERROR);
        EXPECT_EQ(ITCCloseFile(), 0);
        EXPECT_EQ(FileContent(path), each.file);
    }
}

// Emptied by being opened for edit. Without a name, the open file is left alone.
TEST_F(DataFile, OpenedForEditIsEmptyAndTakesEpochs) {
    WriteFile(path, PulseFileBytes());
    SetUpPulseEpoch();
    EXPECT_EQ(ITCOpenFileForEdit(path.c_str()), ITC_FILE_ERROR);
    EXPECT_EQ(FileContent(path), Bytes());
    EXPECT_EQ(ITCSaveToFile(), ITC_SUCCESS);
    EXPECT_EQ(ITCOpenFileForEdit(nullptr), ITC_FILE_ERROR);
    EXPECT_EQ(ITCSaveToFile(), ITC_SUCCESS);
    const Bytes epoch = PulseEpochBytes({0, 0, 0, 0});
    EXPECT_EQ(FileContent(path),
              Join({FileHeaderBytes(8, 2, 2484), epoch, epoch, Big32(580), Big32(1532)}));
}

// The count goes on from the file that was looked at, or that is left behind open. Positions that
// its table lacks are where the new file ends, and so begins.
TEST_F(DataFile, TakesEpochsAfterAnother) {
    const std::string other = folder.File("other.itc");
    const Bytes epoch = PulseEpochBytes({0, 0, 0, 0}), place = Big32(580);
    const Bytes countTooHigh = Join({FileHeaderBytes(8, 2, 580), place});
    for (const auto& [looked, opened, count] : {std::tuple{PulseFileBytes(), ITC_SUCCESS, 1U},
                                                {FileHeaderBytes(8, 0, 0), ITC_SUCCESS, 0U},
                                                {countTooHigh, ITC_FILE_ERROR, 2U},
                                                {Bytes{}, ITC_FILE_ERROR, 0U}}) {
        filehdr->numEpochs = 0;
        WriteFile(other, looked);
        EXPECT_EQ(ITCOpenFile(other.c_str()), opened);
        EXPECT_EQ(ITCCloseFile(), 0);
        SetUpPulseEpoch();
        ASSERT_EQ(Create(), ITC_SUCCESS);
        EXPECT_EQ(ITCSaveToFile(), ITC_SUCCESS);
        EXPECT_EQ(ITCSaveToFile(), ITC_SUCCESS);
        Bytes expected = Join({FileHeaderBytes(8, count + 2, 2484), epoch, epoch});
        for (uint32_t i = 0; i <= count; ++i) expected = Join({expected, place});
        EXPECT_EQ(FileContent(path), Join({expected, Big32(1532)}));
        FILE* const left = ITCOpenFilePtr;
        ASSERT_EQ(Open(), ITC_SUCCESS);
        EXPECT_NE(ITCOpenFilePtr, left);
        EXPECT_EQ(ITCRetrieveEpoch(static_cast<int32_t>(count) + 1), ITC_SUCCESS);
        EXPECT_EQ(fclose(left), 0);
    }
}

TEST_F(DataFile, EpochsOutsideItsTableAndClosedFiles) {
    const auto expectNoEpoch = [](int32_t epoch) {
        EXPECT_EQ(ITCEpochParameters(epoch), ITC_FILE_ERROR) << epoch;
        EXPECT_EQ(ITCRetrieveEpoch(epoch), ITC_FILE_ERROR) << epoch;
        EXPECT_EQ(ITCRetrieveEpochStm(epoch), ITC_FILE_ERROR) << epoch;
        EXPECT_EQ(ITCRetrieveEpochStmGClamp(epoch, 0), ITC_FILE_ERROR) << epoch;
    };
    SetUpPulseEpoch();
    ASSERT_EQ(Create(), ITC_SUCCESS);
    ASSERT_EQ(ITCSaveToFile(), ITC_SUCCESS);
    EpochPosition[1] = 580;  // the next one's, not yet in the file
    for (const int32_t epoch : {-1, 1, 2, INT32_MAX, INT32_MIN}) expectNoEpoch(epoch);
    EXPECT_EQ(ITCEpochParameters(0), ITC_SUCCESS);
    const FILE* const stream = ITCOpenFilePtr;
    EXPECT_EQ(ITCCloseFile(), 0);
    EXPECT_EQ(ITCCloseFile(), -1);
    EXPECT_EQ(ITCOpenFilePtr, stream);
    expectNoEpoch(0);
    uint32_t size = 0;
    for (const int8_t type : {3, 15}) {
        const int32_t result = type == 3 ? ITC_FILE_ERROR : ITC_STIMULUS_ERROR;
        epochhdr->stimType[0] = type;
        EXPECT_EQ(ITCWriteStmParams(0, &size), result);
        EXPECT_EQ(ITCReadStmParams(0), result);
    }
}

TEST_F(DataFile, EpochsAreAppendedWithTheTableBehindThem) {
    ASSERT_EQ(Create(), ITC_SUCCESS);
    EXPECT_EQ(ftell(ITCOpenFilePtr), 580);
    const Samples first{1, 0xFFFE, 3, 0x8000}, second{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
    SetUpPulseEpoch();
    std::copy(first.begin(), first.end(), session.input.begin());
    ASSERT_EQ(ITCSaveToFile(), ITC_SUCCESS);  // flushed: complete without a close
    EXPECT_EQ(FileContent(path),
              Join({FileHeaderBytes(8, 1, 1532), PulseEpochBytes(first), Big32(580)}));
    SetUpPulseEpoch(3);
    std::copy(second.begin(), second.end(), session.input.begin());
    ASSERT_EQ(ITCSaveToFile(), ITC_SUCCESS);  // 912 + 3 * 32 + 24 bytes
    EXPECT_EQ(FileContent(path), Join({FileHeaderBytes(8, 2, 2564), PulseEpochBytes(first),
                                       PulseEpochBytes(second), Big32(580), Big32(1532)}));
    EXPECT_EQ(ftell(ITCOpenFilePtr), 2564);
    EXPECT_EQ(EpochPosition[2], 2564);
}

// Types 5 and 8 take no bytes on file but count all the same, so later epochs are recorded beyond
// their real start; the conductances of a dynamic clamp follow it, but not within a sum.
TEST_F(DataFile, CountsEveryStimulusTypesBytes) {
    constexpr uint32_t kPoints = 1000;
    std::vector<float> conductance(kPoints, 1.0F);
    ExcitatoryG = InhibitoryG = conductance.data();
    for (const Stimulus& stimulus : kStimuli) {
        for (const bool inSum : {false, true}) {
            if (inSum && stimulus.add == nullptr) continue;
            SCOPED_TRACE(testing::Message() << int{stimulus.type} << " " << inSum);
            filehdr->numEpochs = 0;
            ASSERT_EQ(Create(), ITC_SUCCESS);
            SetUpAcquisition(1, kPoints);
            Record record(stimulus);
            ASSERT_EQ(inSum ? InstallSum(0, 2) : stimulus.build(0, record.words), ITC_SUCCESS);
            if (stimulus.type == 7) InstallSum(0, 0);
            for (int i = 0; inSum && i < 2; ++i) ASSERT_EQ(stimulus.add(0, record.words), 0);
            const QuietOutput quiet;
            for (int i = 0; i < 2; ++i) ASSERT_EQ(ITCSaveToFile(), ITC_SUCCESS);
            const uint32_t other = 912 + 2 * kPoints + (inSum ? 1284 : 0) +
                                   (stimulus.type == 11 && !inSum ? 8 * kPoints : 0);
            const uint32_t counted = other + (inSum ? 2 : 1) * stimulus.size;
            const uint32_t onFile = stimulus.type == 5 || stimulus.type == 8 ? other : counted;
            EXPECT_EQ(EpochPosition[2], 580 + 2 * counted);
            const Bytes file = FileContent(path);
            ASSERT_EQ(file.size(), 580 + 2 * onFile + 8);
            EXPECT_EQ(Word(file, 536), 2);
            EXPECT_EQ(Word(file, 540), 580 + 2 * onFile);
            EXPECT_EQ(Word(file, 580 + 2 * onFile + 4), 580 + counted);
            EXPECT_EQ(Word(file, 580 + onFile + 576), kPoints);
            EXPECT_EQ(ITCCloseFile(), 0);
        }
    }
    ExcitatoryG = InhibitoryG = nullptr;
}

}  // namespace
