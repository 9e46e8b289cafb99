// Where the tool's output goes: names, links, devices and pipes, and what reaches the screen.
#include <sys/stat.h>

#include <csignal>

#include "NewFile.h"
#include "PulseEpoch.h"
#include "ToolRun.h"

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
TEST_F(OutputTest, PipesAreNotReplaced) {
    ASSERT_EQ(mkfifo("pipe", 0600), 0);
    std::filesystem::create_symlink("pipe", "link");
    EXPECT_EQ(Repair("pipe").messages, "corvantis: pipe: is not a regular file\n");
    EXPECT_EQ(Repair("link").code, 2);
    EXPECT_TRUE(std::filesystem::is_fifo("pipe"));
}

TEST_F(OutputTest, LinksLeadToTheFileThatIsReplaced) {
    WriteFile("target.dat", Bytes(3));
    std::filesystem::create_symlink("target.dat", "link.dat");
    EXPECT_EQ(Repair("link.dat").code, 0);
    EXPECT_EQ(FileContent("target.dat"), PulseFileBytes());
    std::filesystem::remove("target.dat");
    EXPECT_EQ(Repair("link.dat").code, 2);
    EXPECT_TRUE(std::filesystem::is_symlink("link.dat"));
}

TEST_F(OutputTest, NamesMayBeAsLongAsTheSystemAllows) {
    const std::string longest = folder.File(std::string(255, 'n'));
    EXPECT_EQ(Repair(longest).code, 0);
    EXPECT_EQ(FileContent(longest), PulseFileBytes());
    EXPECT_EQ(Repair(longest + "n").code, 2);
}

TEST_F(OutputTest, NoNameCanSteerTheTerminal) {
    const std::string name = "e\x1b[31m\n.dat", shown = "e [31m .dat";
    EXPECT_EQ(RunTool("info " + name).messages,
              "corvantis: " + shown + ": No such file or directory\n");
    WriteFile(name, First(PulseFileBytes(), 1530));
    const ToolRun run = RunTool("check " + name);
    EXPECT_TRUE(run.results.starts_with(shown + ": ")) << run.results;
    EXPECT_EQ(run.results.find('\x1b'), std::string::npos);
    WriteFile(name, PulseFileBytes());
    EXPECT_EQ(RunTool("check " + name).results, shown + ": clean, 1 epochs in 1536 bytes\n");
}

TEST_F(OutputTest, InterruptionsLeaveNoTemporaryFile) {
    const auto interrupt = [](int signal, void (*action)(int)) {
        std::signal(signal, action);
        const corvantis::NewFile file("out.dat", false);
        raise(signal);
        _exit(7);
    };
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        EXPECT_EXIT(interrupt(signal, SIG_DFL), testing::KilledBySignal(signal), "");
    }
    std::filesystem::remove("sound.dat");
    EXPECT_TRUE(std::filesystem::is_empty(folder.path));
    EXPECT_EXIT(interrupt(SIGHUP, SIG_IGN), testing::ExitedWithCode(7), "");
}

}  // namespace
}  // namespace corvantis_test
