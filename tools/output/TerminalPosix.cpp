// Standard streams.
#include <fcntl.h>
#include <unistd.h>

#include "files/Failure.h"
#include "output/Terminal.h"

namespace corvantis::tool {

// Otherwise a new file could become descriptor 2 and receive the messages.
void PrepareStandardStreams() {
    if (fcntl(STDOUT_FILENO, F_GETFD) < 0) throw SystemFailure("standard output");
    int descriptor = 0;
    while (descriptor >= 0 && descriptor <= STDERR_FILENO) descriptor = open("/dev/null", O_RDWR);
    if (descriptor > STDERR_FILENO) close(descriptor);
}

bool IsScreen(FILE* stream) { return stream != nullptr && isatty(fileno(stream)) != 0; }

}  // namespace corvantis::tool
