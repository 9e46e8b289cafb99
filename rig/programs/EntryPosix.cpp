// The beginning of a program.
#include "programs/Entry.h"

int main(int argc, char** argv) { return corvantis::rig::RunProgram(argc, argv); }
