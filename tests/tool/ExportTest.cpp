// Exported tables against numbers worked out by hand.
#include "SavedSteps.h"
#include "ToolRun.h"

namespace corvantis_test {
namespace {

class ExportTest : public ToolTest {
  protected:
    ExportTest() { WriteFile("file.dat", UnitsFileBytes()); }
};

// The pulse: 1000 counts for two points after one of -5.
TEST_F(ExportTest, GivesSecondsWithUnitsVoltsOrCounts) {
    const std::pair<std::string, std::string> exports[] = {
        {"",
         "time_s,response0_mV,response1_word,stimulus0_pA,stimulus1_V\n"
         "0,2,1,-0.078125,-0.00078125\n"
         "0.0002,0,2,15.546874999999998,0.15546875\n"
         "0.0004,-2,65535,15.546874999999998,0.15546875\n"
         "0.0006,1,4,-0.078125,-0.00078125\n"},
        {" --volts",
         "time_s,response0_V,response1_word,stimulus0_V,stimulus1_V\n"
         "0,1,1,-0.00078125,-0.00078125\n"
         "0.0002,0,2,0.15546875,0.15546875\n"
         "0.0004,-1,65535,0.15546875,0.15546875\n"
         "0.0006,0.5,4,-0.00078125,-0.00078125\n"},
        {" --raw",
         "time_s,response0_counts,response1_counts,stimulus0_counts,stimulus1_counts\n"
         "0,3200,1,-5,-5\n"
         "0.0002,0,2,995,995\n"
         "0.0004,-3200,-1,995,995\n"
         "0.0006,1600,4,-5,-5\n"}};
    for (const auto& [options, table] : exports) {
        EXPECT_EQ(RunTool("export file.dat --stimulus" + options).results, table);
    }
    EXPECT_TRUE(Contains(RunTool("info file.dat -e 0").results, "1000 DAC codes (15.625 pA)"));
}

TEST_F(ExportTest, WritesSeveralEpochsIntoFilesOfTheirOwn) {
    std::vector<Preparation> epochs(10, [] { SetUpPulseEpoch(); });
    epochs.insert(epochs.end(), {SetUpDynamicClamp, SetUpWaves});
    RecordSteps("file.dat", epochs);
    EXPECT_EQ(RunTool("export file.dat --all").code, 2);
    EXPECT_EQ(RunTool("export file.dat -e 0-1 -o a.csv").code, 0);
    EXPECT_EQ(RunTool("export file.dat --all -o a.csv").code, 2);
    const ToolRun run = RunTool("export file.dat --all -o a.csv --force --raw --stimulus");
    EXPECT_EQ(run.code, 1);
    EXPECT_EQ(std::count(run.messages.begin(), run.messages.end(), '\n'), 2) << run.messages;
    const Bytes tables =
        Join({FileContent("a-00.csv"), FileContent("a-10.csv"), FileContent("a-11.csv")});
    const std::string csv(tables.begin(), tables.end());
    for (const char* part :
         {"time_s,response0_counts,excitatory0_nS,inhibitory0_nS\n", ",6,-6\n", ",,\n"})
        EXPECT_TRUE(Contains(csv, part)) << csv;
    EXPECT_TRUE(csv.starts_with("time_s,response0_counts,stimulus0_counts\n")) << csv;
}

}  // namespace
}  // namespace corvantis_test
