// Events of the console.
#include <windows.h>

#include <atomic>

#include "session/Interruption.h"

namespace corvantis::rig {
namespace {

std::atomic<int> count = 0;

BOOL WINAPI CountOne(DWORD /*event*/) {
    ++count;
    return TRUE;
}

}  // namespace

void CountInterruptions() { SetConsoleCtrlHandler(CountOne, TRUE); }

int Interruptions() { return count; }

}  // namespace corvantis::rig
