// Where the tool's output goes: names, links, devices and pipes, and what reaches the screen.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <csignal>
#include <filesystem>

#include "EpochList.h"
#include "NewFile.h"
#include "PulseEpoch.h"
#include "ToolRun.h"

namespace corvantis_test {
namespace {

class OutputTest : public testing::Test {
  protected:
    OutputTest() { WriteFile(sound, PulseFileBytes()); }
    ToolRun Repair(const std::string& output) {
        return RunTool({"repair", sound, "-o", output, "--force"});
    }
    TemporaryFolder folder;
    std::string sound = folder.File("sound.dat");
};

// A device that became a file would fail every program that uses it.
TEST_F(OutputTest, PipesAreNotReplaced) {
    const std::string pipe = folder.File("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const ToolRun run = Repair(pipe);
    EXPECT_EQ(run.code, 2);
    EXPECT_EQ(run.messages, "corvantis: " + pipe + ": is not a regular file\n");
    EXPECT_TRUE(std::filesystem::is_fifo(pipe));
    std::filesystem::create_symlink(pipe, folder.File("link"));
    EXPECT_EQ(Repair(folder.File("link")).code, 2);
    EXPECT_TRUE(std::filesystem::is_fifo(pipe));
}

TEST_F(OutputTest, LinksLeadToTheFileThatIsReplaced) {
    const std::string target = folder.File("target.dat");
    const std::string link = folder.File("link.dat");
    WriteFile(target, Bytes(3));
    std::filesystem::create_symlink("target.dat", link);
    EXPECT_EQ(Repair(link).code, 0);
    EXPECT_TRUE(std::filesystem::is_symlink(link));
    EXPECT_EQ(FileContent(target), PulseFileBytes());
    std::filesystem::remove(target);
    EXPECT_EQ(Repair(link).code, 2);
    EXPECT_TRUE(std::filesystem::is_symlink(link));
}

TEST_F(OutputTest, NamesMayBeAsLongAsTheSystemAllows) {
    const std::string longest = folder.File(std::string(255, 'n'));
    EXPECT_EQ(Repair(longest).code, 0);
    EXPECT_EQ(FileContent(longest), PulseFileBytes());
    EXPECT_EQ(Repair(folder.File(std::string(256, 'n'))).code, 2);
}

TEST_F(OutputTest, NoNameCanSteerTheTerminal) {
    const std::string name = folder.File("e\x1b[31m\n.dat");
    const std::string shown = folder.File("e [31m .dat");
    EXPECT_EQ(RunTool({"info", name}).messages,
              "corvantis: " + shown + ": No such file or directory\n");
    Bytes truncated = PulseFileBytes();
    truncated.resize(1530);
    WriteFile(name, truncated);
    const ToolRun run = RunTool({"check", name});
    EXPECT_EQ(run.code, 1);
    EXPECT_TRUE(run.results.starts_with(shown + ": ")) << run.results;
    EXPECT_EQ(run.results.find('\x1b'), std::string::npos);
    WriteFile(name, PulseFileBytes());
    EXPECT_EQ(RunTool({"check", name}).results, shown + ": clean, 1 epochs in 1536 bytes\n");
}

// Otherwise the export of the second would meet the file of the first.
TEST_F(OutputTest, EpochsNamedTwiceAreChosenOnce) {
    EXPECT_EQ(corvantis::ParseEpochList("3,0-2,1,3-4", 5), (std::vector<size_t>{3, 0, 1, 2, 4}));
    EXPECT_EQ(RunTool({"export", sound, "-e", "0,0", "-o", folder.File("o.csv")}).code, 0);
    EXPECT_TRUE(std::filesystem::exists(folder.File("o.csv")));
}

TEST_F(OutputTest, InterruptionsLeaveNoTemporaryFile) {
    const auto interrupt = [this](int signal) {
        const corvantis::NewFile file(folder.File("out.dat"), false);
        raise(signal);
    };
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        EXPECT_EXIT(interrupt(signal), testing::KilledBySignal(signal), "");
    }
    const auto ignore = [&] {
        std::signal(SIGHUP, SIG_IGN);
        interrupt(SIGHUP);
        _exit(7);
    };
    EXPECT_EXIT(ignore(), testing::ExitedWithCode(7), "");
    std::filesystem::remove(sound);
    EXPECT_TRUE(std::filesystem::is_empty(folder.path));
}

// The manual page is made of it.
TEST_F(OutputTest, TheWholeHelpHasEachSubcommandsUsageAndExamples) {
    const std::string help = RunTool({"--help-all"}).results;
    for (const char* command : {"info", "check", "repair", "export"}) {
        const std::string name = std::string("corvantis ") + command;
        EXPECT_NE(help.find("\n\n" + name + " [OPTIONS] FILE:\n"), std::string::npos) << help;
        EXPECT_NE(help.find("\n    $ " + name + " "), std::string::npos) << help;
    }
    EXPECT_NE(help.find("\n\nExamples:\n  $ corvantis info"), std::string::npos) << help;
}

}  // namespace
}  // namespace corvantis_test
