// Creating, opening and closing the data file, and what a saved epoch adds to it, byte by byte.
#if !defined(_WIN32)
#include <fcntl.h>
#endif
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

#if defined(_WIN32)
constexpr char kHome[] = "USERPROFILE";
constexpr char kNoMatch[] = "run[1]";  // a star is in no name there
void SetVariable(const char* name, const std::string& value) { _putenv_s(name, value.c_str()); }
bool IsInherited(FILE* /*stream*/) { return false; }  // as files are opened there
#else
constexpr char kHome[] = "HOME";
constexpr char kNoMatch[] = "run*";
void SetVariable(const char* name, const std::string& value) { setenv(name, value.c_str(), 1); }
bool IsInherited(FILE* stream) { return fcntl(fileno(stream), F_GETFD) != FD_CLOEXEC; }
#endif

// The first match of a pattern, or the pattern itself; a tilde only once the file is there.
TEST_F(DataFile, IsCreatedWithItsHeaderAndOverwrittenOnlyOnRequest) {
    const std::string home = std::getenv(kHome) == nullptr ? "/" : std::getenv(kHome);
    SetVariable(kHome, folder.path.string());
    const Bytes precious = Text("a year of work", 2000), blank = FileHeaderBytes(8, 0, 0);
    for (const char* name : {"b.itc", "c.itc", "a.dat"}) WriteFile(folder.File(name), precious);
    using Case = std::tuple<std::string, int32_t, bool, const char*>;
    for (const auto& [pattern, overwrite, done, name] :
         {Case("~/b.itc", 0, false, "b.itc"), Case("*.itc", 1, true, "b.itc"),
          Case("?.dat", 0, false, "a.dat"), Case(kNoMatch, 0, true, kNoMatch),
          Case("~/c.itc", 1, true, "c.itc"), Case("~/new.itc", 0, false, "new.itc")}) {
        const std::string full = pattern[0] == '~' ? pattern : folder.File(pattern);
        EXPECT_EQ(ITCCreateFile(full.c_str(), overwrite), done ? 0 : 7) << pattern;
        EXPECT_FALSE(done && IsInherited(ITCOpenFilePtr));
        EXPECT_EQ(ITCCloseFile(), done ? 0 : -1);
        EXPECT_EQ(FileContent(folder.File(name)) == blank, done) << pattern;
    }
    EXPECT_EQ(FileContent(folder.File("a.dat")), precious);
    SetVariable(kHome, home);
}

TEST_F(DataFile, OpensWithItsTableOrNotAtAll) {
    // Version, epochs, table position and size of the file; the result, and entries that are
    // loaded.
    using Case = std::tuple<uint8_t, uint32_t, uint32_t, size_t, int32_t, size_t>;
    const uint32_t table[] = {580, 0x89ABCDEF};
    for (const auto& [version, epochs, position, size, result, entries] :
         {Case(8, 0, 580, 0, 7, 0), Case(8, 0, 580, 579, 7, 0), Case(8, 0, 0xFFFFFFF0, 580, 0, 0),
          Case(8, 2, 580, 588, 0, 2), Case(9, 2, 580, 588, 9, 2), Case(0x80, 2, 580, 588, 0, 2),
          Case(8, 3, 580, 588, 7, 2), Case(8, 2, 580, 587, 7, 1), Case(8, 1, 588, 588, 7, 0),
          Case(8, 0xFFFFFFFF, 580, 588, 7, 0), Case(8, 0x40000002, 580, 588, 7, 2)}) {
        SCOPED_TRACE(testing::Message() << int{version} << " " << epochs << " " << position);
        const Bytes header = FileHeaderBytes(version, epochs, position);
        const Bytes file = First(Join({header, Big32(table[0]), Big32(table[1])}), size);
        WriteFile(path, file);
        EXPECT_EQ(Open(), result);
        EXPECT_TRUE(std::equal(table, table + entries, EpochPosition));
        EXPECT_EQ(Results({ITCRetrieveEpoch(0), ITCCloseFile()}), Results({7, 0}));
        EXPECT_EQ(FileContent(path), file);
    }
}

// Emptied by being opened for edit. Without a name, the open file is left alone.
TEST_F(DataFile, OpenedForEditIsEmptyAndTakesEpochs) {
    WriteFile(path, PulseFileBytes());
    SetUpPulseEpoch();
    EXPECT_EQ(ITCOpenFileForEdit(path.c_str()), ITC_FILE_ERROR);
    EXPECT_EQ(FileContent(path), Bytes());
    EXPECT_EQ(Results({ITCSaveToFile(), ITCOpenFileForEdit(nullptr), ITCSaveToFile()}),
              Results({0, 7, 0}));
    const Bytes epoch = PulseEpochBytes({0, 0, 0, 0});
    EXPECT_EQ(FileContent(path),
              Join({FileHeaderBytes(8, 2, 2484), epoch, epoch, Big32(580), Big32(1532)}));
}

// The count goes on from the file that was looked at, or that is left behind open. Positions that
// its table lacks are where the new file ends, and so begins.
TEST_F(DataFile, TakesEpochsAfterAnother) {
    const std::string other = folder.File("other.itc");
    const Samples samples = {1, 0xFFFE, 0x8003, 0x1234};
    const Bytes epoch = PulseEpochBytes(samples), place = Big32(580);
    const Bytes countTooHigh = Join({FileHeaderBytes(8, 2, 580), place});
    for (const auto& [looked, opened, count] : {std::tuple{PulseFileBytes(), ITC_SUCCESS, 1U},
                                                {FileHeaderBytes(8, 0, 0), ITC_SUCCESS, 0U},
                                                {countTooHigh, ITC_FILE_ERROR, 2U},
                                                {Bytes{}, ITC_FILE_ERROR, 0U}}) {
        filehdr->numEpochs = 0;
        WriteFile(other, looked);
        EXPECT_EQ(Results({ITCOpenFile(other.c_str()), ITCCloseFile()}), Results({opened, 0}));
        SetUpPulseEpoch();
        std::copy(samples.begin(), samples.end(), session.input.begin());
        ASSERT_EQ(Results({Create(), ITCSaveToFile(), ITCSaveToFile()}), Results(3));
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
    SetUpPulseEpoch();
    ASSERT_EQ(Results({Create(), ITCSaveToFile()}), Results(2));
    EpochPosition[1] = 580;  // the next one's, not yet in the file
    const FILE* const stream = ITCOpenFilePtr;
    for (const int32_t epoch : {-1, 1, INT32_MAX, INT32_MIN, 0}) {
        if (epoch == 0) {
            EXPECT_EQ(Results({ITCCloseFile(), ITCCloseFile()}), Results({0, -1}));
        }
        EXPECT_EQ(Results({ITCEpochParameters(epoch), ITCRetrieveEpoch(epoch),
                           ITCRetrieveEpochStm(epoch), ITCRetrieveEpochStmGClamp(epoch, 0)}),
                  Results(4, ITC_FILE_ERROR));
    }
    EXPECT_EQ(ITCOpenFilePtr, stream);
    uint32_t size = 0;
    EXPECT_EQ(Results({ITCWriteStmParams(0, &size), ITCReadStmParams(0)}), Results({7, 7}));
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
            const uint32_t conductances = stimulus.type == 11 && !inSum ? 8 * kPoints : 0;
            const uint32_t other = 912 + 2 * kPoints + (inSum ? 1284 : 0) + conductances;
            const uint32_t counted = other + (inSum ? 2 : 1) * stimulus.size;
            const uint32_t onFile = stimulus.type == 5 || stimulus.type == 8 ? other : counted;
            EXPECT_EQ(EpochPosition[2], 580 + 2 * counted);
            const Bytes file = FileContent(path);
            ASSERT_EQ(file.size(), 580 + 2 * onFile + 8);
            const Bytes table = Join({Big32(580), Big32(580 + counted)});
            EXPECT_EQ(Bytes(file.end() - 8, file.end()), table);
            EXPECT_TRUE(Word(file, 536) == 2 && Word(file, 540) == 580 + 2 * onFile);
            EXPECT_EQ(Word(file, 580 + onFile + 576), kPoints);
        }
    }
    ExcitatoryG = InhibitoryG = nullptr;
}

}  // namespace
