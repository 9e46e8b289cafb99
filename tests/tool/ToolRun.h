// Running the tool: its command line in this process, or the program itself.
#pragma once

#include <sys/wait.h>

#include <cstdio>
#include <string>
#include <vector>

#include "CommandLine.h"
#include "FileBytes.h"

namespace corvantis_test {

struct ToolRun {
    int code = -1;
    std::string results;
    std::string messages;
};

inline std::string TextOf(FILE* stream) {
    std::fflush(stream);
    const Bytes bytes = Content(stream);
    return {bytes.begin(), bytes.end()};
}

inline ToolRun RunTool(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "corvantis");
    std::vector<char*> argv;
    for (std::string& argument : arguments) argv.push_back(argument.data());
    const Stream results = StreamOver(), messages = StreamOver();
    corvantis::Terminal terminal{results.get(), messages.get()};
    ToolRun run;
    run.code = corvantis::RunCommandLine(static_cast<int>(argv.size()), argv.data(), terminal);
    run.results = TextOf(results.get());
    run.messages = TextOf(messages.get());
    return run;
}

// A shell's command line; only standard output is kept.
inline ToolRun RunShell(const std::string& command) {
    ToolRun run;
    FILE* pipe = popen(command.c_str(), "r");
    if (pipe == nullptr) return run;
    for (int c = fgetc(pipe); c != EOF; c = fgetc(pipe))
        run.results.push_back(static_cast<char>(c));
    const int status = pclose(pipe);
    run.code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return run;
}

inline ToolRun RunProgram(const std::string& arguments) {
    return RunShell(std::string(CORVANTIS_PROGRAM) + " " + arguments);
}

}  // namespace corvantis_test
