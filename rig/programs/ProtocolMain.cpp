// The program corvantis-protocol.
#include "programs/Entry.h"
#include "programs/RigProgram.h"

int corvantis::rig::RunProgram(int argc, char** argv) {
    return RunGuarded(RunProtocolLine, argc, argv);
}
