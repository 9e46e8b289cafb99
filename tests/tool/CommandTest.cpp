// Sub-commands as users meet them: exit codes, messages, refusals, and other programs.
#include <gtest/gtest.h>

#include <filesystem>
#include <nlohmann/json.hpp>

#include "SavedSteps.h"
#include "ToolRun.h"

namespace corvantis_test {
namespace {

class CommandTest : public testing::Test {
  protected:
    CommandTest() {
        WriteFile(sound, PulseFileBytes());
        Bytes truncated = PulseFileBytes();
        truncated.resize(1530);
        WriteFile(damaged, truncated);
    }
    TemporaryFolder folder;
    std::string sound = folder.File("sound.dat");
    std::string damaged = folder.File("damaged.dat");
    std::string out = folder.File("out.dat");
};

TEST_F(CommandTest, EndsWithTheCodeThatItsHelpPromises) {
    const std::string none = folder.File("none.dat");
    const std::vector<std::pair<std::vector<std::string>, int>> cases = {
        {{"--help"}, 0},
        {{"--help-all"}, 0},
        {{"--version"}, 0},
        {{"check", "--help"}, 0},
        {{}, 2},
        {{"check"}, 2},
        {{"check", "--nonsense", sound}, 2},
        {{"check", sound}, 0},
        {{"check", damaged}, 1},
        {{"check", none}, 2},
        {{"check", damaged, none, sound}, 2},
        {{"check", "--stimulus", sound}, 0},
        {{"info", sound}, 0},
        {{"info", damaged}, 0},
        {{"info", sound, "-e", "0"}, 0},
        {{"info", sound, "-e", "1"}, 2},
        {{"info", sound, "-e", "0,"}, 2},
        {{"info", sound, "-e", "99999999999999999999"}, 2},
        {{"repair", sound}, 2},
        {{"repair", sound, "-o", sound}, 2},
        {{"repair", sound, "-o", sound, "--force"}, 2},
        {{"repair", sound, "-o", out}, 0},
        {{"repair", sound, "-o", out}, 2},
        {{"repair", damaged, "-o", out, "--force"}, 1},
        {{"repair", sound, "-o", folder.path.string(), "--force"}, 2},
        {{"repair", sound, "-o", folder.File("none/out.dat")}, 2},
        {{"export", sound}, 0},
        {{"export", damaged}, 2},
        {{"export", sound, "--format", "mat"}, 2},
        {{"export", sound, "--raw", "--units"}, 2},
        {{"export", sound, "-o", sound, "--force"}, 2},
    };
    for (const auto& [arguments, code] : cases) {
        const ToolRun run = RunTool(arguments);
        std::string line;
        for (const std::string& argument : arguments) line += argument + " ";
        EXPECT_EQ(run.code, code) << line << run.messages;
        EXPECT_EQ(run.messages.starts_with("corvantis: "),
                  code == 2 || line == "info " + damaged + " ")
            << line << run.messages;
    }
    EXPECT_EQ(FileContent(sound), PulseFileBytes());
}

TEST_F(CommandTest, RefusesTheFileItselfUnderAnotherName) {
    const std::string link = folder.File("link.dat");
    std::filesystem::create_hard_link(sound, link);
    const ToolRun run = RunTool({"repair", sound, "-o", link, "--force"});
    EXPECT_EQ(run.code, 2);
    EXPECT_EQ(run.messages, "corvantis: " + link + ": is the file to repair; name another one\n");
    EXPECT_EQ(FileContent(link), PulseFileBytes());
}

TEST_F(CommandTest, LeavesNothingBehindWhenItFails) {
    Bytes newer = PulseFileBytes(9);
    WriteFile(damaged, newer);
    EXPECT_EQ(RunTool({"repair", damaged, "-o", out}).code, 2);
    EXPECT_EQ(RunTool({"export", damaged, "-o", out}).code, 2);
    size_t files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder.path)) {
        files += entry.is_regular_file() ? 1 : 0;
    }
    EXPECT_EQ(files, 2U);
}

TEST_F(CommandTest, NamesTheReasonForWhatIsNoDataFile) {
    const std::string file = folder.File("file");
    for (size_t size = 0; size < 580; ++size) {
        WriteFile(file, First(PulseFileBytes(), size));
        const ToolRun run = RunTool({"check", file});
        ASSERT_EQ(run.code, 2);
        ASSERT_NE(run.messages.find(file + ": has " + std::to_string(size) + " bytes"),
                  std::string::npos);
    }
    EXPECT_NE(RunTool({"info", folder.path.string()}).messages.find("is a directory"),
              std::string::npos);
    EXPECT_NE(RunTool({"info", "/dev/null"}).messages.find("is not a regular file"),
              std::string::npos);
    WriteFile(file, PulseFileBytes(9));
    EXPECT_NE(RunTool({"check", file}).messages.find("format version 9 is newer than 8"),
              std::string::npos);
}

TEST_F(CommandTest, KeepsStandardOutputForItsResults) {
    const std::string waves = folder.File("waves.dat");
    RecordSteps(waves, {SetUpWaves, SetUpSum, [] { SetUpPulseEpoch(); }});
    for (const char* command : {"check --json --stimulus ", "info --json "}) {
        const ToolRun run = RunProgram(command + waves + " 2>/dev/null");
        EXPECT_LT(run.code, 2);
        EXPECT_TRUE(nlohmann::json::accept(run.results)) << run.results;
    }
    // Behind a closed descriptor, every result would be lost.
    const ToolRun closed = RunProgram("info " + sound + " 2>&1 >&-");
    EXPECT_EQ(closed.code, 2);
    EXPECT_EQ(closed.results, "corvantis: standard output: Bad file descriptor\n");
}

TEST_F(CommandTest, RunsOtherSubcommandsFromThePath) {
    const std::string program = folder.File("corvantis-hello");
    const std::string text = "#!/bin/sh\necho hello \"$@\"\nexit 7\n";
    WriteFile(program, {text.begin(), text.end()});
    std::filesystem::permissions(program, std::filesystem::perms::owner_all);
    const std::string path = "PATH=" + folder.path.string() + ":$PATH " CORVANTIS_PROGRAM;
    const ToolRun run = RunShell(path + " hello --json 'a b'");
    EXPECT_EQ(run.code, 7);
    EXPECT_EQ(run.results, "hello --json a b\n");
    EXPECT_EQ(RunShell(path + " goodbye 2>&1").code, 2);
    EXPECT_EQ(RunShell(path + " ../hello 2>&1").code, 2);
}

TEST_F(CommandTest, ReportsStandardOutputThatIsFull) {
    EXPECT_EQ(RunProgram("export " + sound + " 2>/dev/null >/dev/full").code, 2);
    EXPECT_EQ(RunProgram("info " + folder.File("none.dat") + " 2>/dev/full").code, 2);
}

TEST_F(CommandTest, SaysWhichStimuliCannotBeRebuiltAndWhy) {
    const auto noise = [](int32_t seed, int32_t points) {
        return [=] {
            const ITCSegmentedNoiseParameters record = {100, 0, seed, points, 0, 0, 2, {}};
            SetUpAcquisition(1, points);
            ASSERT_EQ(ITCSegmentedNoiseParams(0, &record), 0);
        };
    };
    RecordSteps(out, {SetUpWaves, SetUpDynamicClamp, noise(5, 8), noise(5, 6), noise(-5, 8)});
    const ToolRun run = RunTool({"check", "--stimulus", "--json", out});
    std::vector<std::string> found;
    const auto json = nlohmann::json::parse(run.results);
    for (const auto& finding : json[0]["findings"]) {
        const std::string where = finding["where"];
        if (where.starts_with("epoch"))
            found.push_back(where + ": " + std::string(finding["found"]));
    }
    ASSERT_EQ(found.size(), 6U) << run.results;
    EXPECT_EQ(found[0],
              "epoch 0, entry 0, file wave stimulus: no waveform: the wave was the application's "
              "and is not stored");
    EXPECT_EQ(found[1],
              "epoch 0, entry 1, triggers stimulus: no waveform: its parameters are not stored");
    EXPECT_TRUE(found[2].starts_with("epoch 1, entry 0, dynamic clamp stimulus: what was played"));
    EXPECT_TRUE(found[3].starts_with(
        "epoch 3, entry 0, segmented stimulus: another waveform the second time: an odd number"));
    EXPECT_TRUE(found[4].starts_with("epoch 4, stimulus: its noise begins with a deviate"));
    EXPECT_TRUE(found[5].starts_with(
        "epoch 4, entry 0, segmented stimulus: another waveform the second time: its seed"));
}

}  // namespace
}  // namespace corvantis_test
