// Sub-commands that are programs of their own: `corvantis X` runs corvantis-X from the path.
#pragma once

namespace corvantis::tool {

// Its exit code, where it does not take the place of this process. Throws a Failure if there is no
// such program.
int RunExternalCommand(int argc, char** argv);

}  // namespace corvantis::tool
