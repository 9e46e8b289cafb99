// Standard streams on Windows: the bytes that were written, which a console takes as UTF-8.
#include <fcntl.h>
#include <io.h>

#include <cstdlib>

#include "files/WindowsFailure.h"
#include "output/Terminal.h"

namespace corvantis::tool {
namespace {

UINT codePageBefore = 0;

HANDLE HandleOf(FILE* stream) { return reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(stream))); }

// Progress is erased by a control sequence.
void ObeyControlSequences(FILE* stream) {
    DWORD mode = 0;
    if (!GetConsoleMode(HandleOf(stream), &mode)) return;
    SetConsoleMode(HandleOf(stream), mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
}

// The console, and what it takes, outlive the program.
void SpeakUtf8() {
    codePageBefore = GetConsoleOutputCP();
    if (codePageBefore == 0 || codePageBefore == CP_UTF8) return;
    SetConsoleOutputCP(CP_UTF8);
    std::atexit([] { SetConsoleOutputCP(codePageBefore); });
}

}  // namespace

void PrepareStandardStreams() {
    const HANDLE results = GetStdHandle(STD_OUTPUT_HANDLE);
    if (results == nullptr || results == INVALID_HANDLE_VALUE) {
        throw Failure("standard output", "is closed");
    }
    for (FILE* stream : {stdout, stderr}) {
        _setmode(_fileno(stream), _O_BINARY);
        ObeyControlSequences(stream);
    }
    SpeakUtf8();
}

bool IsScreen(FILE* stream) {
    DWORD mode = 0;
    return stream != nullptr && GetConsoleMode(HandleOf(stream), &mode);
}

}  // namespace corvantis::tool
