// Running the program itself through a shell, where there is one that programs can rely on.
#pragma once

#if !defined(_WIN32)

#include <sys/wait.h>

#include "ToolRun.h"

namespace corvantis_test {

// A shell's command line, in which $C is the program; only standard output is kept.
inline ToolRun RunShell(const std::string& command) {
    ToolRun run;
    FILE* pipe = popen(("C=" CORVANTIS_PROGRAM "; " + command).c_str(), "r");
    if (pipe == nullptr) return run;
    for (int c = fgetc(pipe); c != EOF; c = fgetc(pipe))
        run.results.push_back(static_cast<char>(c));
    const int status = pclose(pipe);
    run.code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return run;
}

}  // namespace corvantis_test

#endif
