// Standard streams and failures of the two programs.
#include "programs/RigProgram.h"

#include <cstdio>
#include <exception>
#include <sstream>

#include "files/Failure.h"
#include "text/Text.h"

namespace corvantis::rig {

int EndOfParsing(const CLI::App& app, const CLI::ParseError& end, const tool::Terminal& terminal) {
    std::ostringstream results, messages;
    const int code = app.exit(end, results, messages);
    terminal.Print("{}", results.str());
    if (code == 0) return tool::kFine;
    terminal.Say("{} (see --help)\n", reading::DisplayText(end.what()));
    return tool::kUnusable;
}

int RunGuarded(CommandLine& line, int argc, char** argv) {
    try {
        tool::PrepareStandardStreams();
        tool::Terminal terminal{stdout, stderr};
        const int code = line(argc, argv, terminal);
        if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
            throw tool::Failure("standard output: results are lost");
        }
        return code;
    } catch (const std::exception& failure) {
        tool::Terminal{nullptr, stderr}.Say("{}\n", reading::DisplayText(failure.what()));
        return tool::kUnusable;
    }
}

}  // namespace corvantis::rig
