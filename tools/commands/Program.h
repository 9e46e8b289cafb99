// The program corvantis from its arguments to its exit code.
#pragma once

namespace corvantis::tool {

// The arguments are UTF-8 where names are not bytes.
int RunProgram(int argc, char** argv);

}  // namespace corvantis::tool
