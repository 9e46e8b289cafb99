// Where each program begins, whatever the system's own beginning is.
#pragma once

namespace corvantis::rig {

// Defined by each program.
int RunProgram(int argc, char** argv);

}  // namespace corvantis::rig
