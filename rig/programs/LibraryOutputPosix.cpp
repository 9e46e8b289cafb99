// Turning the descriptor of standard output over for a while.
#include <fcntl.h>
#include <unistd.h>

#include <cstdio>

#include "files/Failure.h"
#include "programs/LibraryOutput.h"

namespace corvantis::rig {

LibraryOutput::LibraryOutput() : before_((std::fflush(stdout), dup(STDOUT_FILENO))) {
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    if (before_ < 0 || nowhere < 0 || dup2(nowhere, STDOUT_FILENO) < 0) {
        throw tool::SystemFailure("/dev/null");
    }
    close(nowhere);
}

LibraryOutput::~LibraryOutput() {
    std::fflush(stdout);
    dup2(before_, STDOUT_FILENO);
    close(before_);
}

}  // namespace corvantis::rig
