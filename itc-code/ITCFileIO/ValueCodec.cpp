// Runs of padding bytes in the data file.
#include "ITCFileIO/ValueCodec.h"

#include <climits>
#include <cstdio>

namespace corvantis {

bool WritePadding(FILE* stream, unsigned long count) {
    unsigned long written = 0;
    for (unsigned long i = 0; i < count; ++i) {
        written += std::fputc(0, stream) == 0 ? 1 : 0;
    }
    return written == count;
}

bool SkipPadding(FILE* stream, unsigned long count) {
    return count <= LONG_MAX && std::fseek(stream, static_cast<long>(count), SEEK_CUR) == 0;
}

}  // namespace corvantis
