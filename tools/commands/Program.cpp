// Sub-commands of the tool's own, and those of the path.
#include "commands/Program.h"

#include <cstdio>
#include <exception>

#include "commands/CommandLine.h"
#include "commands/ExternalCommand.h"
#include "files/Failure.h"
#include "text/Text.h"

namespace corvantis::tool {
namespace {

int Run(int argc, char** argv) {
    if (NamesExternalCommand(argc, argv)) return RunExternalCommand(argc, argv);
    PrepareStandardStreams();
    Terminal terminal{stdout, stderr};
    const int code = RunCommandLine(argc, argv, terminal);
    const bool isWritten = std::fflush(stdout) == 0 && std::ferror(stdout) == 0;
    if (!isWritten || std::fclose(stdout) != 0) throw Failure("standard output: results are lost");
    return code;
}

}  // namespace

int RunProgram(int argc, char** argv) {
    try {
        return Run(argc, argv);
    } catch (const std::exception& failure) {
        Terminal{nullptr, stderr}.Say("{}\n", reading::DisplayText(failure.what()));
        return kUnusable;
    }
}

}  // namespace corvantis::tool
