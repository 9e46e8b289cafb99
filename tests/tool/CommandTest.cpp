// Sub-commands as users meet them: exit codes, messages, refusals, and other programs.
#include "PulseEpoch.h"
#include "SavedSteps.h"
#include "ShellRun.h"
#include "ToolRun.h"

namespace corvantis_test {
namespace {

const std::string kDevice = std::filesystem::path::preferred_separator == '/' ? "/dev/null" : "NUL";

class CommandTest : public ToolTest {
  protected:
    CommandTest() {
        WriteFile("sound.dat", PulseFileBytes());
        WriteFile("damaged.dat", First(PulseFileBytes(), 1530));
        std::filesystem::create_hard_link("sound.dat", "link.dat");
    }
};

TEST_F(CommandTest, EndsWithTheCodeThatItsHelpPromisesAndLeavesNothingBehind) {
    const std::pair<std::string, int> cases[] = {
        {"", 2},
        {"--help-all", 0},
        {"--version", 0},
        {"check --nonsense sound.dat", 2},
        {"check sound.dat", 0},
        {"check damaged.dat none.dat sound.dat", 2},
        {"check --stimulus sound.dat", 0},
        {"info damaged.dat", 0},
        {"info sound.dat -e 0,", 2},
        {"info sound.dat -e 1-0", 2},
        {"info sound.dat -e 0x", 2},
        {"info sound.dat -e 99999999999999999999", 2},
        {"repair sound.dat -o link.dat --force", 2},
        {"repair sound.dat -o out.dat", 0},
        {"repair sound.dat -o out.dat", 2},
        {"repair damaged.dat -o out.dat --force --keep-partial", 1},
        {"repair sound.dat -o none/out.dat", 2},
        // Otherwise the second would meet the file of the first.
        {"export sound.dat -e 0,0 -o table.csv", 0},
        {"export sound.dat -o -", 0},
        {"export damaged.dat", 1},
        {"export sound.dat -o table.mat", 2},
        {"export sound.dat -o table.CSV.mat --format csv", 0},
        {"export sound.dat --raw --volts", 2},
        {"export sound.dat -o link.dat --force --format csv", 2},
    };
    for (const auto& [line, code] : cases) {
        const ToolRun run = RunTool(line);
        EXPECT_EQ(run.code, code) << line << run.messages;
        const bool hasMessage =
            code == 2 || line == "info damaged.dat" || line == "export damaged.dat";
        EXPECT_EQ(run.messages.starts_with("corvantis: "), hasMessage) << line << run.messages;
    }
    EXPECT_EQ(FileContent("sound.dat"), PulseFileBytes());
    const std::filesystem::directory_iterator files(folder.path);
    EXPECT_EQ(std::distance(begin(files), end(files)), 6);
}

TEST_F(CommandTest, NamesTheReasonForWhatIsNoDataFile) {
    WriteFile("short", First(PulseFileBytes(), 579));
    WriteFile("newer.dat", PulseFileBytes(9));
    WriteFile("picture.png", Join({Hex("89504E470D0A1A0A"), Bytes(2000, 7)}));
    for (const std::string& reason :
         {std::string("short: has 579 bytes, fewer than the 580 of a file header"),
          std::string("picture.png: is no recording: "
                      "it looks like a PNG picture"),
          kDevice + ": is not a regular file",
          std::string("newer.dat: format version 9 is newer than 8"),
          std::string("none.dat: No such file or directory")}) {
        const std::string name = reason.substr(0, reason.find(':'));
        for (const std::string command : {"info ", "check ", "export ", "repair -o out.dat "}) {
            const ToolRun run = RunTool(command + name);
            EXPECT_EQ(run.code, 2);
            EXPECT_TRUE(run.messages.starts_with("corvantis: " + reason)) << run.messages;
        }
    }
}

#if !defined(_WIN32)

TEST_F(CommandTest, KeepsStandardOutputForItsResultsAndRunsOthersFromThePath) {
    const std::string text = "#!/bin/sh\necho hello \"$@\"\nexit 7\n";
    WriteFile("corvantis-hello", {text.begin(), text.end()});
    std::filesystem::permissions("corvantis-hello", std::filesystem::perms::owner_all);
    RecordSteps("waves.dat", {SetUpWaves, SetUpSum});
    EXPECT_TRUE(nlohmann::json::accept(
        RunShell("$C check --json --stimulus waves.dat 2>/dev/null").results));
    const std::pair<std::string, std::pair<int, std::string>> cases[] = {
        // Behind a closed descriptor, every result would be lost.
        {"$C info sound.dat 2>&1 >&-", {2, "corvantis: standard output: Bad file descriptor\n"}},
        {"$C export sound.dat 2>/dev/null >/dev/full", {2, ""}},
        {"$C info none.dat 2>/dev/full", {2, ""}},
        {"PATH=.:$PATH $C hello --json 'a b'", {7, "hello --json a b\n"}},
        {"PATH=.:$PATH $C ../hello 2>/dev/null", {2, ""}}};
    for (const auto& [command, expected] : cases) {
        const ToolRun run = RunShell(command);
        EXPECT_EQ(std::pair(run.code, run.results), expected) << command;
    }
}

#endif

}  // namespace
}  // namespace corvantis_test
