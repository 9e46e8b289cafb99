// The program corvantis-record.
#include "programs/Entry.h"
#include "programs/RigProgram.h"

int corvantis::rig::RunProgram(int argc, char** argv) {
    return RunGuarded(RunRecordLine, argc, argv);
}
