// The program corvantis.
#include "commands/Program.h"

int main(int argc, char** argv) { return corvantis::tool::RunProgram(argc, argv); }
