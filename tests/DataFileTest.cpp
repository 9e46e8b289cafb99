// Creating, finding, opening and closing the data file.
#include <gtest/gtest.h>

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

namespace {

using namespace corvantis_test;

using DataFile = RecordingTest;

TEST_F(DataFile, IsCreatedWithItsHeaderAndOverwrittenOnlyOnRequest) {
    EXPECT_EQ(ITCCreateFile(path.c_str(), 0), ITC_SUCCESS);
    EXPECT_EQ(ITCCloseFile(), 0);
    EXPECT_EQ(FileContent(path), FileHeaderBytes(8, 0, 0));
    const Bytes precious = Text("a year of work", 2000);
    WriteFile(path, precious);
    EXPECT_EQ(ITCCreateFile(path.c_str(), 0), ITC_FILE_ERROR);
    EXPECT_EQ(FileContent(path), precious);
    EXPECT_EQ(ITCCloseFile(), -1);
    EXPECT_EQ(ITCCreateFile(path.c_str(), 1), ITC_SUCCESS);
    EXPECT_EQ(ITCCloseFile(), 0);
    EXPECT_EQ(FileContent(path), FileHeaderBytes(8, 0, 0));
}

TEST_F(DataFile, TakesTheFirstMatchOfAPatternOrThePatternItself) {
    for (const char* name : {"c.itc", "b.itc", "a.dat"}) WriteFile(folder.File(name), Bytes(3));
    EXPECT_EQ(ITCCreateFile(folder.File("*.itc").c_str(), 1), ITC_SUCCESS);
    EXPECT_EQ(ITCCloseFile(), 0);
    EXPECT_EQ(FileContent(folder.File("b.itc")).size(), 580);
    EXPECT_EQ(FileContent(folder.File("c.itc")), Bytes(3));
    EXPECT_EQ(ITCCreateFile(folder.File("?.itc").c_str(), 0), ITC_FILE_ERROR);
    EXPECT_EQ(ITCCreateFile(folder.File("run*").c_str(), 0), ITC_SUCCESS);
    EXPECT_EQ(ITCCloseFile(), 0);
    EXPECT_EQ(FileContent(folder.File("run*")).size(), 580);
}

// A tilde stands for the home folder only once the file is there.
TEST_F(DataFile, HomeFolderOfExistingFilesOnly) {
    const char* const home = std::getenv("HOME");
    const std::string formerHome = home == nullptr ? "/" : home;
    setenv("HOME", folder.path.c_str(), 1);
    WriteFile(path, PulseFileBytes());
    EXPECT_EQ(ITCOpenFile("~/data.itc"), ITC_SUCCESS);
    EXPECT_EQ(ITCCloseFile(), 0);
    EXPECT_EQ(ITCCreateFile("~/new.itc", 0), ITC_FILE_ERROR);
    EXPECT_FALSE(std::filesystem::exists(folder.File("new.itc")));
    setenv("HOME", formerHome.c_str(), 1);
}

struct OpeningCase {
    const char* name;
    Bytes file;
    int32_t result;
    std::vector<uint32_t> positions;  // of a loaded table
};

std::vector<OpeningCase> OpeningCases() {
    const auto twoEpochs = [](uint8_t version) {
        return Join({FileHeaderBytes(version, 2, 580), Big32(580), Big32(0x89ABCDEF)});
    };
    const auto table = [](uint32_t epochs, uint32_t position) {
        return Join({FileHeaderBytes(8, epochs, position), Big32(580)});
    };
    const std::vector<uint32_t> two = {580, 0x89ABCDEF};
    const Bytes emptyFile = FileHeaderBytes(8, 0, 580);
    return {
        {"no bytes", {}, ITC_FILE_ERROR, {}},
        {"one byte short", Bytes(emptyFile.begin(), emptyFile.end() - 1), ITC_FILE_ERROR, {}},
        {"no epochs", emptyFile, ITC_SUCCESS, {}},
        {"no epochs, table anywhere", FileHeaderBytes(8, 0, 0xFFFFFFF0), ITC_SUCCESS, {}},
        {"version 8", twoEpochs(8), ITC_SUCCESS, two},
        {"version 1", twoEpochs(1), ITC_SUCCESS, two},
        {"version 9", twoEpochs(9), ITC_VERSION_TOO_NEW, two},
        {"version 127", twoEpochs(127), ITC_VERSION_TOO_NEW, two},
        {"version -128", twoEpochs(0x80), ITC_SUCCESS, two},
        {"table with an epoch too few", table(2, 580), ITC_FILE_ERROR, {580}},
        {"table cut", table(1, 582), ITC_FILE_ERROR, {}},
        {"table at the end", table(1, 584), ITC_FILE_ERROR, {}},
        {"table beyond the file", table(1, 0xFFFFFFF0), ITC_FILE_ERROR, {}},
        {"-1 epochs", table(0xFFFFFFFF, 580), ITC_FILE_ERROR, {}},
        {"fewest epochs", table(0x80000000, 580), ITC_FILE_ERROR, {}},
        {"most epochs", table(0x7FFFFFFF, 580), ITC_FILE_ERROR, {580}},
        {"epochs whose table wraps to 4 bytes", table(0x40000001, 580), ITC_FILE_ERROR, {}},
    };
}

TEST_F(DataFile, OpensWithItsTableOrNotAtAll) {
    for (const OpeningCase& each : OpeningCases()) {
        SCOPED_TRACE(each.name);
        WriteFile(path, each.file);
        EXPECT_EQ(Open(), each.result);
        for (size_t i = 0; i < each.positions.size(); ++i) {
            EXPECT_EQ(EpochPosition[i], each.positions[i]);
        }
        EXPECT_EQ(ITCRetrieveEpoch(0), ITC_FILE_ERROR);
        EXPECT_EQ(ITCCloseFile(), 0);
        EXPECT_EQ(FileContent(path), each.file);
    }
}

TEST_F(DataFile, OpenedForEditIsEmptyAndTakesEpochs) {
    WriteFile(path, PulseFileBytes());
    SetUpPulseEpoch();
    EXPECT_EQ(ITCOpenFileForEdit(path.c_str()), ITC_FILE_ERROR);
    EXPECT_EQ(FileContent(path), Bytes());
    EXPECT_EQ(ITCSaveToFile(), ITC_SUCCESS);
    EXPECT_EQ(ITCOpenFileForEdit(nullptr), ITC_FILE_ERROR) << "leaves the open file alone";
    EXPECT_EQ(ITCSaveToFile(), ITC_SUCCESS);
    const Bytes epoch = PulseEpochBytes({0, 0, 0, 0});
    EXPECT_EQ(FileContent(path),
              Join({FileHeaderBytes(8, 2, 2484), epoch, epoch, Big32(580), Big32(1532)}));
}

// The count goes on from the file that was looked at. Positions that its table lacks are where the
// new file ends, and so begins.
TEST_F(DataFile, TakesEpochsAfterALookAtAnotherFile) {
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
        EXPECT_EQ(ITCCloseFile(), 0);
        ASSERT_EQ(Open(), ITC_SUCCESS);
        EXPECT_EQ(ITCRetrieveEpoch(static_cast<int32_t>(count) + 1), ITC_SUCCESS);
        EXPECT_EQ(ITCCloseFile(), 0);
    }
}

TEST_F(DataFile, IsLeftBehindOpenWhenAnotherIsOpened) {
    SetUpPulseEpoch();
    ASSERT_EQ(ITCCreateFile(folder.File("first.itc").c_str(), 0), ITC_SUCCESS);
    ASSERT_EQ(ITCSaveToFile(), ITC_SUCCESS);
    FILE* first = ITCOpenFilePtr;
    // The count and positions of the first file go on; the epoch itself stands at 580.
    ASSERT_EQ(Create(), ITC_SUCCESS);
    EXPECT_NE(ITCOpenFilePtr, first);
    EXPECT_EQ(ITCSaveToFile(), ITC_SUCCESS);
    EXPECT_EQ(ITCCloseFile(), 0);
    EXPECT_EQ(FileContent(path), Join({FileHeaderBytes(8, 2, 1532), PulseEpochBytes({0, 0, 0, 0}),
                                       Big32(580), Big32(1532)}));
    EXPECT_EQ(fclose(first), 0);
}

void ExpectNoEpoch(int32_t epoch) {
    EXPECT_EQ(ITCEpochParameters(epoch), ITC_FILE_ERROR) << epoch;
    EXPECT_EQ(ITCRetrieveEpoch(epoch), ITC_FILE_ERROR) << epoch;
    EXPECT_EQ(ITCRetrieveEpochStm(epoch), ITC_FILE_ERROR) << epoch;
    EXPECT_EQ(ITCRetrieveEpochStmGClamp(epoch, 0), ITC_FILE_ERROR) << epoch;
}

TEST_F(DataFile, EpochsOutsideItsTableAndClosedFiles) {
    SetUpPulseEpoch();
    ASSERT_EQ(Create(), ITC_SUCCESS);
    ASSERT_EQ(ITCSaveToFile(), ITC_SUCCESS);
    for (const int32_t epoch : {-1, 1, 2, INT32_MAX, INT32_MIN}) ExpectNoEpoch(epoch);
    EXPECT_EQ(ITCEpochParameters(0), ITC_SUCCESS);
    const FILE* stream = ITCOpenFilePtr;
    EXPECT_EQ(ITCCloseFile(), 0);
    EXPECT_EQ(ITCCloseFile(), -1);
    EXPECT_EQ(ITCOpenFilePtr, stream);
    uint32_t size = 0;
    ExpectNoEpoch(0);
    EXPECT_EQ(ITCSaveToFile(), ITC_FILE_ERROR);
    EXPECT_EQ(ITCWriteStmParams(0, &size), ITC_FILE_ERROR);
    EXPECT_EQ(ITCReadStmParams(0), ITC_FILE_ERROR);
    epochhdr->stimType[0] = 15;
    EXPECT_EQ(ITCWriteStmParams(0, &size), ITC_STIMULUS_ERROR);
    EXPECT_EQ(ITCReadStmParams(0), ITC_STIMULUS_ERROR);
    EXPECT_EQ(filehdr->numEpochs, 1);
    EXPECT_EQ(FileContent(path).size(), 1536);
}

}  // namespace
