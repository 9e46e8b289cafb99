// The program corvantis: sub-commands of its own, and those of the path.
#include <cstdio>
#include <exception>

#include "commands/CommandLine.h"
#include "commands/ExternalCommand.h"
#include "files/Failure.h"
#include "output/Text.h"

namespace corvantis::tool {
namespace {

int RunProgram(int argc, char** argv) {
    if (NamesExternalCommand(argc, argv)) RunExternalCommand(argc, argv);
    Terminal terminal{TakeStandardOutput(), stderr};
    const int code = RunCommandLine(argc, argv, terminal);
    if (std::ferror(terminal.results) != 0 || std::fclose(terminal.results) != 0) {
        throw SystemFailure("standard output");
    }
    return code;
}

}  // namespace
}  // namespace corvantis::tool

int main(int argc, char** argv) {
    try {
        return corvantis::tool::RunProgram(argc, argv);
    } catch (const std::exception& failure) {
        corvantis::tool::Terminal{nullptr, stderr}.Say(
            "corvantis: {}\n", corvantis::tool::DisplayText(failure.what()));
        return corvantis::tool::kUnusable;
    }
}
