// The program corvantis: sub-commands of its own, and those of the path.
#include <cstdio>
#include <exception>

#include "commands/CommandLine.h"
#include "commands/ExternalCommand.h"
#include "files/Failure.h"
#include "text/Text.h"

namespace corvantis::tool {
namespace {

int RunProgram(int argc, char** argv) {
    if (NamesExternalCommand(argc, argv)) RunExternalCommand(argc, argv);
    SecureStandardStreams();
    Terminal terminal{stdout, stderr};
    const int code = RunCommandLine(argc, argv, terminal);
    const bool isWritten = std::fflush(stdout) == 0 && std::ferror(stdout) == 0;
    if (!isWritten || std::fclose(stdout) != 0) throw Failure("standard output: results are lost");
    return code;
}

}  // namespace
}  // namespace corvantis::tool

int main(int argc, char** argv) {
    try {
        return corvantis::tool::RunProgram(argc, argv);
    } catch (const std::exception& failure) {
        corvantis::tool::Terminal{nullptr, stderr}.Say(
            "{}\n", corvantis::reading::DisplayText(failure.what()));
        return corvantis::tool::kUnusable;
    }
}
