// Folders and several files at once: which files count, in which order, and exports that are
// interrupted.
#if !defined(_WIN32)
#include <sys/file.h>
#endif

#include <map>

#include "SavedSteps.h"
#include "ShellRun.h"
#include "ToolRun.h"

namespace corvantis_test {
namespace {

using Tree = std::map<std::string, Bytes>;

class ManyFilesTest : public ToolTest {
  protected:
    // Recordings of 1 to 40 epochs, each third one damaged, and others.
    ManyFilesTest() {
        std::filesystem::create_directories("in/sub/.hidden");
        for (size_t i = 0; i < 30; ++i) {
            const std::vector<Bytes> epochs(1 + (i * 13) % 40, PulseEpochBytes({1, 2, 3, 4}));
            Bytes file = DataFileBytes(epochs);
            if (i % 3 == 0) file[580 + 583] = 9;
            names.push_back((i < 20 ? "in/a" : "in/sub/b") + std::to_string(10 + i));
            WriteFile(names.back(), file);
        }
        WriteFile("in/notes.txt", Text("notes", 5));
        WriteFile("in/sub/.hidden/c.dat", PulseFileBytes());
    }
    static Tree FilesBelow(const std::string& folder) {
        Tree files;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
            if (entry.is_regular_file())
                files[entry.path().generic_string()] = FileContent(entry.path().string());
        }
        return files;
    }

    std::vector<std::string> names;
};

TEST_F(ManyFilesTest, AreSaidInTheirOrderAndSpoilNoOther) {
    std::string alone;
    for (const std::string& name : names) alone += RunTool("check " + name).results;
    EXPECT_EQ(RunTool("check in").results, alone);
    for (const std::string command : {"info ", "check ", "info --json -e 0 "}) {
        const ToolRun one = RunTool(command + "-j 1 in none"),
                      many = RunTool(command + "-j 8 in none");
        EXPECT_EQ(many.code, 2);
        EXPECT_EQ(many.results, one.results);
        EXPECT_EQ(many.messages, one.messages);
        EXPECT_TRUE(Contains(many.messages, "corvantis: none: No such file or directory\n"));
        EXPECT_TRUE(many.messages.ends_with("findings: 10, failures: 1, no recordings: 1\n"));
    }
    EXPECT_EQ(RunTool("check -q in").messages, "");
    EXPECT_EQ(RunTool("check in").code, 1);
}

TEST_F(ManyFilesTest, GetFoldersOfTheirOwnAndReplaceNothingUnasked) {
    EXPECT_EQ(RunTool("export in").code, 2);
    EXPECT_EQ(RunTool("export in -o tables.csv").code, 2);
    EXPECT_EQ(RunTool("export in -o out/ --format npy -j 4").code, 1);
    EXPECT_TRUE(std::filesystem::exists("out/sub/b39/epoch-17.npy"));
    const Tree before = FilesBelow("out");
    EXPECT_EQ(RunTool("export in -o out/ --raw --format npy").code, 2);
    EXPECT_EQ(RunTool("export in -o out/ --raw --format npy --resume").code, 1);
    EXPECT_EQ(FilesBelow("out"), before);
    EXPECT_EQ(RunTool("export in/a11 -o out/ --force").code, 0);
    const Bytes table = FileContent("out/a11/epoch-00.csv");
    EXPECT_TRUE(std::string(table.begin(), table.end()).ends_with("\n0.0003,0.00125\n"));
    // Two of one name.
    WriteFile("a11", PulseFileBytes());
    const ToolRun run = RunTool("export in/a11 a11 -o two/");
    EXPECT_EQ(run.code, 2);
    EXPECT_TRUE(Contains(run.messages, "a11: its tables would go where those of in/a11 go"));
    EXPECT_TRUE(std::filesystem::exists("two/a11/epoch-13.csv"));
}

#if !defined(_WIN32)

TEST_F(ManyFilesTest, KilledExportsLeaveWholeFilesAndAreResumed) {
    RunTool("export in -o whole/");
    const Tree whole = FilesBelow("whole");
    PseudoRandom random;
    const std::string again = "$C export in -o out/ --resume 2>/dev/null";
    for (int i = 0; i < 20; ++i) {
        const std::string seconds = "0.0" + std::to_string(10 + random.Next() % 50);
        RunShell("timeout -s KILL " + seconds + " " + again);
        if (!std::filesystem::exists("out")) continue;
        for (const auto& [path, content] : FilesBelow("out")) {
            if (Contains(path, "/.")) continue;
            ASSERT_EQ(content, whole.at("whole" + path.substr(3))) << path;
        }
    }
    // Only what nobody holds is left over.
    WriteFile("out/a11/.corvantis-0", {});
    const Stream used(fopen("out/a11/.corvantis-1", "w"), fclose);
    ASSERT_EQ(flock(fileno(used.get()), LOCK_EX), 0);
    std::filesystem::remove("out/a11/epoch-00.csv");
    EXPECT_EQ(RunShell(again).code, 1);
    Tree expected;
    for (const auto& [path, content] : whole) expected["out" + path.substr(5)] = content;
    expected["out/a11/.corvantis-1"] = {};
    EXPECT_EQ(FilesBelow("out"), expected);
}

#endif

}  // namespace
}  // namespace corvantis_test
