// Exported tables against numbers worked out by hand.
#include "SavedSteps.h"
#include "ToolRun.h"

namespace corvantis_test {
namespace {

class ExportTest : public ToolTest {
  protected:
    // Two entries, 200 µs, four points; gains and units for the first entry alone.
    ExportTest() {
        Bytes file = Join({FileHeaderBytes(8, 1, 1572),
                           PulseEpochBytes({3200, 1, 0, 2, 0xF380, 3, 1600, 4}), Big32(580)});
        Put(file, 580 + 516, Hex("3F000000"));  // ampGain[0] 0.5 V per unit
        Put(file, 580 + 548, Hex("42C80000"));  // convFactor[0] 100 units per V
        Put(file, 580 + 609, Text("pA", 16));
        Put(file, 580 + 673, Text("mV", 16));
        WriteFile("file.dat", file);
    }
};

// The pulse: 1000 counts for two points after one of -5.
TEST_F(ExportTest, GivesSecondsWithVoltsCountsOrUnits) {
    const std::pair<std::string, std::string> exports[] = {
        {" --volts --stimulus",
         "time_s,response0_V,response1_V,stimulus0_V,stimulus1_V\n"
         "0,1,0.0003125,-0.0015625,-0.0015625\n"
         "0.0002,0,0.000625,0.3109375,0.3109375\n"
         "0.0004,-1,0.0009375,0.3109375,0.3109375\n"
         "0.0006,0.5,0.00125,-0.0015625,-0.0015625\n"},
        {" --raw --stimulus",
         "time_s,response0_counts,response1_counts,stimulus0_counts,stimulus1_counts\n"
         "0,3200,1,-5,-5\n"
         "0.0002,0,2,995,995\n"
         "0.0004,-3200,3,995,995\n"
         "0.0006,1600,4,-5,-5\n"},
        {" --stimulus",
         "time_s,response0_mV,response1_V,stimulus0_pA,stimulus1_V\n"
         "0,2,0.0003125,-0.15625,-0.0015625\n"
         "0.0002,0,0.000625,31.093749999999996,0.3109375\n"
         "0.0004,-2,0.0009375,31.093749999999996,0.3109375\n"
         "0.0006,1,0.00125,-0.15625,-0.0015625\n"}};
    for (const auto& [options, table] : exports) {
        const ToolRun run = RunTool("export file.dat" + options);
        EXPECT_EQ(run.code, 0) << run.messages;
        EXPECT_EQ(run.results, table);
    }
}

// Longer than what is read at a time.
TEST_F(ExportTest, GivesEveryPointOfALongEpoch) {
    Samples samples(10001);
    for (size_t i = 0; i < samples.size(); ++i) samples[i] = static_cast<uint16_t>(3 * i);
    const auto points = static_cast<uint32_t>(samples.size());
    const Bytes epoch =
        Join({EpochHeaderBytes(100, points, {3}), PulseBytes(), BigSamples(samples)});
    const auto table = static_cast<uint32_t>(580 + epoch.size());
    WriteFile("file.dat", Join({FileHeaderBytes(8, 1, table), epoch, Big32(580)}));
    std::istringstream lines(RunTool("export file.dat --raw").results);
    std::string line;
    std::getline(lines, line);
    for (const uint16_t sample : samples) {
        ASSERT_TRUE(std::getline(lines, line));
        ASSERT_EQ(line.substr(line.find(',') + 1), std::to_string(static_cast<int16_t>(sample)));
    }
    EXPECT_FALSE(std::getline(lines, line));
}

TEST_F(ExportTest, WritesSeveralEpochsIntoFilesOfTheirOwn) {
    RecordSteps("file.dat",
                {[] { SetUpPulseEpoch(); }, [] { SetUpPulseEpoch(2); }, SetUpDynamicClamp});
    EXPECT_EQ(RunTool("export file.dat -e 0-1 -o a.csv").code, 0);
    EXPECT_FALSE(FileContent("a-0.csv").empty());
    EXPECT_FALSE(FileContent("a-1.csv").empty());
    EXPECT_EQ(RunTool("export file.dat --all -o a.csv").code, 2);
    EXPECT_EQ(RunTool("export file.dat --all -o a.csv --force --raw --stimulus").code, 0);
    const Bytes last = FileContent("a-2.csv");
    const std::string csv(last.begin(), last.end());
    EXPECT_TRUE(csv.starts_with("time_s,response0_counts,excitatory0_nS,inhibitory0_nS\n")) << csv;
    EXPECT_NE(csv.find(",6,-6\n"), std::string::npos) << csv;
    EXPECT_EQ(RunTool("export file.dat").code, 2);
    EXPECT_EQ(RunTool("export file.dat --all").code, 2);
}

TEST_F(ExportTest, LeavesAColumnEmptyThatCannotBeRebuilt) {
    RecordSteps("file.dat", {SetUpWaves});
    const ToolRun run = RunTool("export file.dat --raw --stimulus");
    EXPECT_EQ(run.code, 1);
    EXPECT_EQ(std::count(run.messages.begin(), run.messages.end(), '\n'), 2) << run.messages;
    EXPECT_NE(run.results.find(",,\n"), std::string::npos) << run.results;
}

}  // namespace
}  // namespace corvantis_test
