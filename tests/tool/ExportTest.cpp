// Exported tables against numbers worked out by hand.
#include <gtest/gtest.h>

#include <cstring>

#include "SavedSteps.h"
#include "ToolRun.h"

namespace corvantis_test {
namespace {

class ExportTest : public testing::Test {
  protected:
    // Two entries, 200 µs, four points; gains and units for the first entry alone.
    static Bytes TwoChannels() {
        Bytes file = Join({FileHeaderBytes(8, 1, 1572),
                           PulseEpochBytes({3200, 1, 0, 2, 0xF380, 3, 1600, 4}), Big32(580)});
        Put(file, 580 + 516, Hex("3F000000"));  // ampGain[0] 0.5 V per unit
        Put(file, 580 + 548, Hex("42C80000"));  // convFactor[0] 100 units per V
        Put(file, 580 + 609, Text("pA", 16));
        Put(file, 580 + 673, Text("mV", 16));
        return file;
    }
    std::string Export(const Bytes& file, std::vector<std::string> options) {
        WriteFile(path, file);
        options.insert(options.begin(), {"export", path});
        const ToolRun run = RunTool(options);
        EXPECT_EQ(run.code, 0) << run.messages;
        return run.results;
    }
    TemporaryFolder folder;
    std::string path = folder.File("file.dat");
    std::string out = folder.File("out.npy");
};

TEST_F(ExportTest, GivesSecondsAndVolts) {
    EXPECT_EQ(Export(TwoChannels(), {}),
              "time_s,response0_V,response1_V\n"
              "0,1,0.0003125\n"
              "0.0002,0,0.000625\n"
              "0.0004,-1,0.0009375\n"
              "0.0006,0.5,0.00125\n");
}

// The pulse: 1000 counts for two points after one of -5.
TEST_F(ExportTest, GivesCountsAndTheStimulus) {
    EXPECT_EQ(Export(TwoChannels(), {"--raw", "--stimulus"}),
              "time_s,response0_counts,response1_counts,stimulus0_counts,stimulus1_counts\n"
              "0,3200,1,-5,-5\n"
              "0.0002,0,2,995,995\n"
              "0.0004,-3200,3,995,995\n"
              "0.0006,1600,4,-5,-5\n");
}

TEST_F(ExportTest, GivesUnitsWhereTheEpochHasThem) {
    EXPECT_EQ(Export(TwoChannels(), {"--units", "--stimulus"}),
              "time_s,response0_mV,response1_V,stimulus0_pA,stimulus1_V\n"
              "0,2,0.0003125,-0.15625,-0.0015625\n"
              "0.0002,0,0.000625,31.093749999999996,0.3109375\n"
              "0.0004,-2,0.0009375,31.093749999999996,0.3109375\n"
              "0.0006,1,0.00125,-0.15625,-0.0015625\n");
}

TEST_F(ExportTest, GivesConductancesOfDynamicClamp) {
    Bytes file = RecordSteps(path, {SetUpDynamicClamp}).back();
    const std::string csv = Export(file, {"--raw", "--stimulus"});
    EXPECT_TRUE(csv.starts_with("time_s,response0_counts,excitatory0_nS,inhibitory0_nS\n")) << csv;
    EXPECT_NE(csv.find(",6,-6\n"), std::string::npos) << csv;
}

TEST_F(ExportTest, LeavesAColumnEmptyThatCannotBeRebuilt) {
    RecordSteps(path, {SetUpWaves});
    const ToolRun run = RunTool({"export", path, "--raw", "--stimulus"});
    EXPECT_EQ(run.code, 1);
    EXPECT_EQ(std::count(run.messages.begin(), run.messages.end(), '\n'), 2) << run.messages;
    EXPECT_NE(run.results.find(",,\n"), std::string::npos) << run.results;
}

// An array as its reader takes it apart: magic, version 1.0, length and text of a description.
TEST_F(ExportTest, WritesArraysThatNumpyReads) {
    Export(TwoChannels(), {"--format", "npy", "--stimulus", "-o", out});
    const Bytes file = FileContent(out);
    ASSERT_EQ(First(file, 8), Hex("934E554D5059 0100"));
    const size_t length = file[8] + 256U * file[9];
    EXPECT_EQ((10 + length) % 64, 0U);
    const std::string text(file.begin() + 10,
                           file.begin() + 10 + static_cast<std::ptrdiff_t>(length));
    EXPECT_NE(text.find("'fortran_order': False, 'shape': (4, 5), }"), std::string::npos) << text;
    ASSERT_EQ(file.size(), 10 + length + 20 * sizeof(double));
    std::vector<double> values(20);
    std::memcpy(values.data(), file.data() + 10 + length, 20 * sizeof(double));
    const std::vector<double> expected = {0,      1,   0.0003125, -0.0015625, -0.0015625,
                                          0.0002, 0,   0.000625,  0.3109375,  0.3109375,
                                          0.0004, -1,  0.0009375, 0.3109375,  0.3109375,
                                          0.0006, 0.5, 0.00125,   -0.0015625, -0.0015625};
    EXPECT_EQ(values, expected);
}

TEST_F(ExportTest, WritesSeveralEpochsIntoFilesOfTheirOwn) {
    RecordSteps(path, {[] { SetUpPulseEpoch(); }, [] { SetUpPulseEpoch(2); }, SetUpDynamicClamp});
    EXPECT_EQ(RunTool({"export", path, "-e", "0-1", "-o", folder.File("a.csv")}).code, 0);
    EXPECT_FALSE(FileContent(folder.File("a-0.csv")).empty());
    EXPECT_FALSE(FileContent(folder.File("a-1.csv")).empty());
    EXPECT_EQ(RunTool({"export", path, "--all", "-o", folder.File("a.csv")}).code, 2);
    EXPECT_EQ(RunTool({"export", path, "--all", "-o", folder.File("a.csv"), "--force"}).code, 0);
    EXPECT_FALSE(FileContent(folder.File("a-2.csv")).empty());
    EXPECT_EQ(RunTool({"export", path}).code, 2);
    EXPECT_EQ(RunTool({"export", path, "--all"}).code, 2);
}

}  // namespace
}  // namespace corvantis_test
