// The program on Windows: names of any script in and out, files that other programs hold open, and
// exports that are ended at any moment.
#include <windows.h>

#include <map>

#include "CorvantisReading.h"
#include "SavedSteps.h"
#include "ToolRun.h"

namespace corvantis_test {
namespace {

namespace fs = std::filesystem;

std::wstring Wide(const std::string& text) { return PathOf(text).wstring(); }

// Running, with its output going to a file.
class RunningProgram {
  public:
    explicit RunningProgram(const std::string& arguments) {
        SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};
        const HANDLE output = CreateFileW(L".output", GENERIC_WRITE, FILE_SHARE_READ, &inherited,
                                          CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
        STARTUPINFOW start = {};
        start.cb = sizeof start;
        start.dwFlags = STARTF_USESTDHANDLES;
        start.hStdOutput = start.hStdError = output;
        std::wstring line = Wide("corvantis " + arguments);
        EXPECT_TRUE(CreateProcessW(Wide(CORVANTIS_PROGRAM).c_str(), line.data(), nullptr, nullptr,
                                   TRUE, 0, nullptr, nullptr, &start, &process));
        CloseHandle(output);
    }
    ToolRun End() {
        DWORD code = 0;
        WaitForSingleObject(process.hProcess, INFINITE);
        GetExitCodeProcess(process.hProcess, &code);
        CloseHandle(process.hThread);
        CloseHandle(process.hProcess);
        const Bytes output = FileContent(".output");
        return {static_cast<int>(code), {output.begin(), output.end()}, ""};
    }
    void KillAfter(DWORD milliseconds) {
        Sleep(milliseconds);
        TerminateProcess(process.hProcess, 9);
        End();
    }

  private:
    PROCESS_INFORMATION process = {};
};

ToolRun RunProgram(const std::string& arguments) { return RunningProgram(arguments).End(); }

using WindowsTest = ToolTest;

TEST_F(WindowsTest, TakesAndGivesUtf8InNamesWildcardsAndOtherPrograms) {
    const fs::path inFolder = PathOf("Ελληνικά 日本語"), file = PathOf("記録 μ.dat");
    fs::create_directory(inFolder);
    RecordSteps("epoch.dat", {[] { SetUpPulseEpoch(); }});
    fs::rename("epoch.dat", inFolder / file);
    const std::string clean = "Ελληνικά 日本語/記録 μ.dat: clean, 1 epochs in 1536 bytes\n";
    EXPECT_EQ(RunProgram("check \"Ελληνικά 日本語/記録 μ.dat\"").results, clean);
    EXPECT_TRUE(Contains(RunProgram("check Ελληνικά* *.png").results, clean));
    EXPECT_EQ(RunProgram("export Ελληνικά* -o 出力/").code, 0);
    EXPECT_EQ(RunProgram("repair \"Ελληνικά 日本語/記録 μ.dat\" -o 出力/δ.dat").code, 0);
    EXPECT_TRUE(fs::exists(PathOf("出力/記録 μ.dat/epoch-0.csv")));
    EXPECT_EQ(FileContent("出力/δ.dat"), FileContent("Ελληνικά 日本語/記録 μ.dat"));
    // The program itself, under the name of another one in the path.
    fs::copy_file(PathOf(CORVANTIS_PROGRAM), PathOf("出力/corvantis-λ.exe"));
    fs::current_path(PathOf("出力"));
    _wputenv((L"PATH=" + fs::current_path().wstring()).c_str());
    const ToolRun other = RunProgram("λ check δ.dat \"no \\\"quo te\\\\\" \"\"");
    EXPECT_EQ(other.code, 2);
    EXPECT_TRUE(Contains(other.results, "δ.dat: clean")) << other.results;
    EXPECT_TRUE(Contains(other.results, "no \"quo te\\: No such file")) << other.results;
    EXPECT_EQ(RunProgram("..\\λ").code, 2);
    fs::current_path(folder.path);
}

class Held {
  public:
    Held(const wchar_t* name, DWORD shared)
        : file(CreateFileW(name, GENERIC_READ, shared, nullptr, OPEN_EXISTING, 0, nullptr)) {}
    Held(const Held&) = delete;
    Held& operator=(const Held&) = delete;
    ~Held() { CloseHandle(file); }

  private:
    HANDLE file;
};

TEST_F(WindowsTest, ReadsWhatOthersShareAndSaysWhatTheyDoNot) {
    const std::string refusal = "held.dat: another program has it open for itself alone";
    WriteFile("held.dat", PulseFileBytes());
    WriteFile("sound.dat", PulseFileBytes());
    LibrarySession session;
    {
        const Held shared(L"held.dat", FILE_SHARE_READ);
        EXPECT_EQ(RunTool("check held.dat").code, 0);
        EXPECT_EQ(ITCOpenFile("held.dat"), 0);
        EXPECT_EQ(Results({ITCRetrieveEpoch(0), ITCCloseFile()}), Results({0, 0}));
        EXPECT_EQ(ITCCreateFile("held.dat", 1), 7);
        EXPECT_EQ(RunTool("repair sound.dat --force -o held.dat").code, 2);
    }
    {
        const Held alone(L"held.dat", 0);
        for (const std::string command : {"info ", "check ", "export ", "repair -o out.dat "}) {
            const ToolRun run = RunTool(command + "held.dat");
            EXPECT_EQ(run.code, 2);
            EXPECT_EQ(run.messages, "corvantis: " + refusal + "\n");
        }
        CorvantisRecording* recording = nullptr;
        CorvantisProblem problem = {};
        EXPECT_EQ(CorvantisOpen("held.dat", &recording, &problem), CORVANTIS_FILE_ERROR);
        EXPECT_EQ(problem.text, refusal);
        EXPECT_EQ(Results({ITCOpenFile("held.dat"), ITCCreateFile("held.dat", 1)}),
                  Results({7, 7}));
        EXPECT_EQ(RunTool("repair sound.dat --force -o held.dat").code, 2);
    }
    EXPECT_EQ(FileContent("held.dat"), PulseFileBytes());
    ASSERT_EQ(ITCCreateFile("new.dat", 0), 0);
    EXPECT_TRUE(Contains(RunTool("check new.dat").results, "note: found a program that is"));
    ITCCloseFile();
    EXPECT_FALSE(Contains(RunTool("check new.dat").results, "note: "));
    const fs::directory_iterator files(folder.path);
    EXPECT_EQ(std::distance(begin(files), end(files)), 3);
}

using Tree = std::map<std::string, Bytes>;

Tree FilesBelow(const std::string& top) {
    Tree files;
    for (const auto& entry : fs::recursive_directory_iterator(top)) {
        const std::string path = entry.path().generic_string();
        if (entry.is_regular_file()) files[path.substr(top.size())] = FileContent(path);
    }
    return files;
}

TEST_F(WindowsTest, KilledExportsLeaveWholeFilesAndAreResumed) {
    fs::create_directory("in");
    for (int i = 0; i < 8; ++i) {
        WriteFile("in/" + std::to_string(i),
                  DataFileBytes(std::vector<Bytes>(20, PulseEpochBytes({1, 2, 3, 4}))));
    }
    const ULONGLONG start = GetTickCount64();
    ASSERT_EQ(RunProgram("export in -o whole/").code, 0);
    const auto duration = static_cast<uint32_t>(GetTickCount64() - start);
    const Tree whole = FilesBelow("whole");
    PseudoRandom random;
    for (int i = 0; i < 6; ++i) {
        fs::remove_all("out");
        fs::create_directory("out");
        RunningProgram("export in -o out/").KillAfter(random.Next() % duration);
        for (const auto& [path, content] : FilesBelow("out")) {
            if (Contains(path, "/.")) continue;
            ASSERT_EQ(content, whole.at(path)) << path;
        }
    }
    // Only what nobody holds is left over.
    fs::create_directory("out/3");
    for (const char* name : {"out/3/.corvantis-0", "out/3/.corvantis-1"}) WriteFile(name, {});
    const Held used(L"out/3/.corvantis-1", FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE);
    fs::remove("out/3/epoch-00.csv");
    EXPECT_EQ(RunProgram("export in -o out/ --resume").code, 0);
    Tree expected = whole;
    expected["/3/.corvantis-1"] = {};
    EXPECT_EQ(FilesBelow("out"), expected);
}

}  // namespace
}  // namespace corvantis_test
