// The tool's command line.
#pragma once

#include "output/Terminal.h"

namespace corvantis::tool {

// Runs the sub-command that the arguments name and returns the exit code.
int RunCommandLine(int argc, char** argv, Terminal& terminal);

// Whether the arguments name a sub-command that the tool does not have itself.
bool NamesExternalCommand(int argc, char** argv);

}  // namespace corvantis::tool
