// Signals of the terminal, and those that end programs.
#include <csignal>
#include <initializer_list>

#include "session/Interruption.h"

namespace corvantis::rig {
namespace {

volatile std::sig_atomic_t count = 0;

extern "C" void CountOne(int /*signal*/) { count = count + 1; }

}  // namespace

void CountInterruptions() {
    struct sigaction action = {};
    action.sa_handler = CountOne;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) sigaction(signal, &action, nullptr);
    // A full pipe or a file at its limit is an error of the write, and no end.
    action.sa_handler = SIG_IGN;
    for (const int signal : {SIGPIPE, SIGXFSZ}) sigaction(signal, &action, nullptr);
}

int Interruptions() { return count; }

}  // namespace corvantis::rig
