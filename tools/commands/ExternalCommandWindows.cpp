// Running corvantis-X.exe, on Windows, where no program can take the place of another.
#include <string>
#include <vector>

#include "commands/ExternalCommand.h"
#include "files/WindowsFailure.h"

namespace corvantis::tool {
namespace {

constexpr DWORD kLongestPath = 32768;

std::wstring FolderOfThisProgram() {
    std::wstring path(kLongestPath, L'\0');
    path.resize(GetModuleFileNameW(nullptr, path.data(), kLongestPath));
    return path.substr(0, path.find_last_of(L'\\'));
}

// Empty if it is not there. Null stands for what Windows looks through, which begins with the
// current folder: never asked for.
std::wstring Find(const std::wstring& folders, const std::wstring& program) {
    std::wstring path(kLongestPath, L'\0');
    const DWORD size =
        SearchPathW(folders.c_str(), program.c_str(), L".exe", kLongestPath, path.data(), nullptr);
    path.resize(size < kLongestPath ? size : 0);
    return path;
}

std::wstring Environment(const wchar_t* name) {
    std::wstring value(kLongestPath, L'\0');
    value.resize(GetEnvironmentVariableW(name, value.data(), kLongestPath));
    return value;
}

// As programs take command lines apart again: backslashes count double before a quotation mark.
std::wstring Quoted(const std::wstring& argument) {
    std::wstring quoted = L"\"";
    size_t backslashes = 0;
    for (const wchar_t character : argument) {
        if (character == L'"') quoted.append(backslashes + 1, L'\\');
        backslashes = character == L'\\' ? backslashes + 1 : 0;
        quoted += character;
    }
    return quoted.append(backslashes, L'\\') + L"\" ";
}

// Interruptions from the keyboard reach the other program as well, which decides.
BOOL WINAPI LeaveToTheOther(DWORD /*event*/) { return TRUE; }

int RunToEnd(const std::wstring& path, std::wstring line) {
    STARTUPINFOW start = {};
    start.cb = sizeof start;
    PROCESS_INFORMATION process = {};
    SetConsoleCtrlHandler(LeaveToTheOther, TRUE);
    if (!CreateProcessW(path.c_str(), line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                        &start, &process)) {
        throw WindowsFailure(NarrowText(path));
    }
    DWORD code = 0;
    WaitForSingleObject(process.hProcess, INFINITE);
    GetExitCodeProcess(process.hProcess, &code);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return static_cast<int>(code);
}

}  // namespace

int RunExternalCommand(int argc, char** argv) {
    const std::string name = argv[1], program = "corvantis-" + name;
    std::wstring path;
    // A separator would leave the path, and run what was never meant as a sub-command.
    if (name.find_first_of("/\\:") == std::string::npos) {
        path = Find(FolderOfThisProgram(), WidePath(program));
        if (path.empty()) path = Find(Environment(L"PATH"), WidePath(program));
    }
    if (path.empty()) {
        throw Failure("no sub-command '" + name + "', and no program " + program +
                      ".exe beside this one or in the path; see corvantis --help");
    }
    std::wstring line = Quoted(path);
    for (int i = 2; i < argc; ++i) line += Quoted(WidePath(argv[i]));
    return RunToEnd(path, line);
}

}  // namespace corvantis::tool
