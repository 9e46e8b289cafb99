// Sub-commands as users meet them: exit codes, messages, refusals, and other programs.
#include "PulseEpoch.h"
#include "SavedSteps.h"
#include "ToolRun.h"

namespace corvantis_test {
namespace {

class CommandTest : public ToolTest {
  protected:
    CommandTest() {
        WriteFile("sound.dat", PulseFileBytes());
        WriteFile("damaged.dat", First(PulseFileBytes(), 1530));
        WriteFile("newer.dat", PulseFileBytes(9));
        std::filesystem::create_hard_link("sound.dat", "link.dat");
    }
};

TEST_F(CommandTest, EndsWithTheCodeThatItsHelpPromisesAndLeavesNothingBehind) {
    const std::vector<std::pair<std::string, int>> cases = {
        {"", 2},
        {"--help", 0},
        {"--help-all", 0},
        {"--version", 0},
        {"check --help", 0},
        {"check", 2},
        {"check --nonsense sound.dat", 2},
        {"check sound.dat", 0},
        {"check damaged.dat", 1},
        {"check damaged.dat none.dat sound.dat", 2},
        {"check --stimulus sound.dat", 0},
        {"info sound.dat", 0},
        {"info damaged.dat", 0},
        {"info sound.dat -e 0", 0},
        {"info sound.dat -e 1", 2},
        {"info sound.dat -e 0,", 2},
        {"info sound.dat -e 1-0", 2},
        {"info sound.dat -e 0x", 2},
        {"info sound.dat -e 99999999999999999999", 2},
        {"repair sound.dat", 2},
        {"repair sound.dat -o sound.dat --force", 2},
        {"repair sound.dat -o link.dat --force", 2},
        {"repair sound.dat -o out.dat", 0},
        {"repair sound.dat -o out.dat", 2},
        {"repair damaged.dat -o out.dat --force", 1},
        {"repair damaged.dat -o out.dat --force --keep-partial", 1},
        {"repair sound.dat -o " + folder.path.string() + " --force", 2},
        {"repair sound.dat -o none/out.dat", 2},
        {"repair newer.dat -o other.dat", 2},
        {"export newer.dat -o other.dat", 2},
        {"export sound.dat", 0},
        // Otherwise the second would meet the file of the first.
        {"export sound.dat -e 0,0 -o table.csv", 0},
        {"export damaged.dat", 2},
        {"export sound.dat --format mat", 2},
        {"export sound.dat --raw --units", 2},
        {"export sound.dat -o link.dat --force", 2},
    };
    for (const auto& [line, code] : cases) {
        const ToolRun run = RunTool(line);
        EXPECT_EQ(run.code, code) << line << run.messages;
        EXPECT_EQ(run.messages.starts_with("corvantis: "), code == 2 || line == "info damaged.dat")
            << line << run.messages;
    }
    EXPECT_EQ(FileContent("sound.dat"), PulseFileBytes());
    const std::filesystem::directory_iterator files(folder.path);
    EXPECT_EQ(std::distance(begin(files), end(files)), 6);
}

TEST_F(CommandTest, NamesTheReasonForWhatIsNoDataFile) {
    WriteFile("empty", {});
    WriteFile("short", First(PulseFileBytes(), 579));
    const std::pair<std::string, std::string> reasons[] = {
        {"empty",
         "has 0 bytes; a file header alone has 580: nothing was recorded, or this is no "
         "data file"},
        {"short",
         "has 579 bytes; a file header alone has 580: nothing was recorded, or this is no "
         "data file"},
        {".", "is a directory"},
        {"/dev/null", "is not a regular file"},
        {"newer.dat", "format version 9 is newer than 8"},
        {"none.dat", "No such file or directory"}};
    for (const auto& [file, reason] : reasons) {
        EXPECT_EQ(RunTool("info " + file).messages, "corvantis: " + file + ": " + reason + "\n");
    }
}

TEST_F(CommandTest, KeepsStandardOutputForItsResults) {
    RecordSteps("waves.dat", {SetUpWaves, SetUpSum, [] { SetUpPulseEpoch(); }});
    for (const char* command : {"check --json --stimulus", "info --json"}) {
        const ToolRun run = RunProgram(std::string(command) + " waves.dat 2>/dev/null");
        EXPECT_LT(run.code, 2);
        EXPECT_TRUE(nlohmann::json::accept(run.results)) << run.results;
    }
    // Behind a closed descriptor, every result would be lost.
    const ToolRun closed = RunProgram("info sound.dat 2>&1 >&-");
    EXPECT_EQ(closed.code, 2);
    EXPECT_EQ(closed.results, "corvantis: standard output: Bad file descriptor\n");
    EXPECT_EQ(RunProgram("export sound.dat 2>/dev/null >/dev/full").code, 2);
    EXPECT_EQ(RunProgram("info none.dat 2>/dev/full").code, 2);
}

TEST_F(CommandTest, RunsOtherSubcommandsFromThePath) {
    const std::string text = "#!/bin/sh\necho hello \"$@\"\nexit 7\n";
    WriteFile("corvantis-hello", {text.begin(), text.end()});
    std::filesystem::permissions("corvantis-hello", std::filesystem::perms::owner_all);
    const std::string path = "PATH=" + folder.path.string() + ":$PATH " CORVANTIS_PROGRAM;
    const ToolRun run = RunShell(path + " hello --json 'a b'");
    EXPECT_EQ(run.code, 7);
    EXPECT_EQ(run.results, "hello --json a b\n");
    EXPECT_EQ(RunShell(path + " goodbye 2>&1").code, 2);
    EXPECT_EQ(RunShell(path + " ../hello 2>&1").code, 2);
}

}  // namespace
}  // namespace corvantis_test
