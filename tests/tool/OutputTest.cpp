// Where the tool's output goes: names, links, pipes and rights, and what reaches the screen.
#include <sys/file.h>
#include <sys/stat.h>

#include <csignal>

#include "PulseEpoch.h"
#include "ToolRun.h"
#include "files/NewFile.h"

namespace corvantis_test {
namespace {

class OutputTest : public ToolTest {
  protected:
    OutputTest() { WriteFile("sound.dat", PulseFileBytes()); }
    static ToolRun Repair(const std::string& output) {
        return RunTool("repair sound.dat --force -o " + output);
    }
};

// A device that became a file would fail every program that uses it.
TEST_F(OutputTest, ReplacesFilesAlsoBehindLinksAndNothingElse) {
    ASSERT_EQ(mkfifo("pipe", 0600), 0);
    std::filesystem::create_symlink("pipe", "link");
    EXPECT_EQ(Repair("link").code, 2);
    EXPECT_TRUE(std::filesystem::is_fifo("pipe"));
    const std::string longest = folder.File(std::string(255, 'n'));
    WriteFile(longest, Bytes(3));
    std::filesystem::create_symlink(longest, "link.dat");
    EXPECT_EQ(Repair("link.dat").code, 0);
    EXPECT_EQ(FileContent(longest), PulseFileBytes());
    std::filesystem::remove(longest);
    EXPECT_EQ(Repair("link.dat").code, 2);
    EXPECT_EQ(Repair(longest + "n").code, 2);
}

TEST_F(OutputTest, SaysThatAFileIsBeingRecordedAndGivesItsRightsOn) {
    ASSERT_EQ(chmod("sound.dat", 0640), 0);
    const Stream recorder(fopen("sound.dat", "r+b"), fclose);
    ASSERT_EQ(flock(fileno(recorder.get()), LOCK_EX), 0);
    EXPECT_TRUE(Contains(RunTool("check sound.dat").results, "note: found a program that is"));
    EXPECT_TRUE(Contains(Repair("out.dat").messages, "is being recorded"));
    struct stat status = {};
    ASSERT_EQ(stat("out.dat", &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0640U);
}

// Any bytes in names, texts and units: what comes out is UTF-8, as writing it as JSON demands.
TEST_F(OutputTest, NoTextCanSteerTheTerminalOrSpoilJson) {
    const std::string texts[] = {"e\x1b[31m\nx\"\\,\x80\x7F",
                                 "\xF4\x90\x80\x80\xE2\x80\xAE\xE2\x82",
                                 "\xED\xA0\x80\xC0\xAF\xC2\x9B"};
    for (const std::string& text : texts) {
        Bytes file = PulseFileBytes();
        for (const size_t at : {8, 580 + 4, 580 + 609, 580 + 673}) Put(file, at, Text(text, 16));
        Put(file, 580 + 516, Hex("3F000000"));
        Put(file, 580 + 548, Hex("42C80000"));
        WriteFile(text, file);
        const std::string json = RunTool("info --json " + text).results;
        EXPECT_TRUE(nlohmann::json::accept(json)) << json;
        for (const std::string& line :
             {"info " + text, "info -e 0 " + text, "check " + text, "export --stimulus " + text,
              "repair --json --force -o out.dat " + text, "info no" + text}) {
            const ToolRun run = RunTool(line);
            const std::string shown = run.results + run.messages;
            EXPECT_EQ(run.code, line.starts_with("info no") ? 2 : 0) << shown;
            EXPECT_NO_THROW(nlohmann::json(shown).dump()) << shown;
            for (const char* control : {"\x1b", "\x7F", "\xC2\x9B", "\xE2\x80\xAE", "m\nx"}) {
                EXPECT_FALSE(Contains(shown, control)) << shown;
            }
        }
    }
}

TEST_F(OutputTest, NoSignalLeavesATemporaryFile) {
    const auto interrupt = [](int signal, void (*action)(int)) {
        std::signal(signal, action);
        const corvantis::tool::NewFile file("out.dat", false);
        struct sigaction installed = {};
        sigaction(signal, nullptr, &installed);
        // Else a second signal finds the default action before the first one's has begun.
        if ((installed.sa_flags & SA_RESETHAND) == 0) raise(signal);
        _exit(7);
    };
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGPIPE, SIGXFSZ, SIGUSR1}) {
        EXPECT_EXIT(interrupt(signal, SIG_DFL), testing::KilledBySignal(signal), "");
    }
    std::filesystem::remove("sound.dat");
    EXPECT_TRUE(std::filesystem::is_empty(folder.path));
    EXPECT_EXIT(interrupt(SIGHUP, SIG_IGN), testing::ExitedWithCode(7), "");
}

}  // namespace
}  // namespace corvantis_test
