// Turning the descriptor of standard output over for a while, on Windows.
#include <fcntl.h>
#include <io.h>

#include <cstdio>

#include "files/Failure.h"
#include "programs/LibraryOutput.h"

namespace corvantis::rig {

LibraryOutput::LibraryOutput() : before_((std::fflush(stdout), _dup(_fileno(stdout)))) {
    const int nowhere = _open("NUL", _O_WRONLY | _O_BINARY);
    if (before_ < 0 || nowhere < 0 || _dup2(nowhere, _fileno(stdout)) < 0) {
        throw tool::SystemFailure("NUL");
    }
    _close(nowhere);
}

LibraryOutput::~LibraryOutput() {
    std::fflush(stdout);
    _dup2(before_, _fileno(stdout));
    _close(before_);
}

}  // namespace corvantis::rig
