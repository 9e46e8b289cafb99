// Handing over to corvantis-X.
#include "commands/ExternalCommand.h"

#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

#include "files/Failure.h"

namespace corvantis::tool {
namespace {

// An installation that is not in the path finds its own programs all the same.
std::string BesideThisProgram(const std::string& program, const char* calledAs) {
    std::error_code none;
    std::filesystem::path self = std::filesystem::read_symlink("/proc/self/exe", none);
    if (none) self = calledAs;
    return (self.parent_path() / program).string();
}

}  // namespace

int RunExternalCommand(int argc, char** argv) {
    const std::string name = argv[1];
    std::string program = "corvantis-" + name;
    // A slash would leave the path, and run what was never meant as a sub-command.
    if (name.find('/') == std::string::npos) {
        std::vector<char*> arguments(argv + 1, argv + argc);
        arguments[0] = program.data();
        arguments.push_back(nullptr);
        const std::string beside = BesideThisProgram(program, argv[0]);
        if (beside.find('/') != std::string::npos) execv(beside.c_str(), arguments.data());
        execvp(program.c_str(), arguments.data());
        if (errno != ENOENT) throw SystemFailure(program);
    }
    throw Failure("no sub-command '" + name + "', and no program " + program +
                  " beside this one or in the path; see corvantis --help");
}

}  // namespace corvantis::tool
