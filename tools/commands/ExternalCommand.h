// Sub-commands that are programs of their own: `corvantis X` runs corvantis-X from the path.
#pragma once

namespace corvantis::tool {

// Replaces this process. Returns only to throw a Failure, if there is no such program.
void RunExternalCommand(int argc, char** argv);

}  // namespace corvantis::tool
