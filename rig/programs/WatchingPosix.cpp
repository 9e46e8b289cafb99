// Starting the page's server as a process of its own, in a group that Ctrl-C does not reach.
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include "player/SharedLibrary.h"
#include "programs/Watching.h"

namespace corvantis::rig {
namespace {

[[noreturn]] void BecomeViewer(const std::string& beside, const std::string& file) {
    setpgid(0, 0);
    const char* arguments[] = {"corvantis-view", "--follow", file.c_str(), nullptr};
    execv(beside.c_str(), const_cast<char**>(arguments));
    execvp(arguments[0], const_cast<char**>(arguments));
    static const char kProblem[] =
        "corvantis: --watch needs the program corvantis-view of the Python package\n";
    (void)!write(STDERR_FILENO, kProblem, sizeof kProblem - 1);
    _exit(2);
}

}  // namespace

Watching::Watching(bool isWanted, const std::string& file) {
    if (!isWanted) return;
    const std::string beside = ProgramFolder() + "corvantis-view";
    const pid_t process = fork();
    if (process == 0) BecomeViewer(beside, file);
    process_ = process;
}

Watching::~Watching() {
    if (process_ <= 0) return;
    const auto process = static_cast<pid_t>(process_);
    kill(process, SIGINT);
    waitpid(process, nullptr, 0);
}

}  // namespace corvantis::rig
