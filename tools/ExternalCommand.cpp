// Handing over to corvantis-X.
#include "ExternalCommand.h"

#include <unistd.h>

#include <string>
#include <vector>

#include "Failure.h"

namespace corvantis {

void RunExternalCommand(int argc, char** argv) {
    const std::string name = argv[1];
    std::string program = "corvantis-" + name;
    // A slash would leave the path, and run what was never meant as a sub-command.
    if (name.find('/') == std::string::npos) {
        std::vector<char*> arguments(argv + 1, argv + argc);
        arguments[0] = program.data();
        arguments.push_back(nullptr);
        execvp(program.c_str(), arguments.data());
        if (errno != ENOENT) throw SystemFailure(program);
    }
    throw Failure("no sub-command '" + name + "', and no program " + program +
                  " in the path; see corvantis --help");
}

}  // namespace corvantis
