// Starting a program, and moving bytes without ever waiting for it.
#include "loopback/Child.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <limits>

#if defined(__APPLE__)
extern char** environ;
#endif

namespace loopback {
namespace {

// That the other end is gone is a result here, not a signal that ends the recording.
#if defined(MSG_NOSIGNAL)
constexpr int kFlags = MSG_DONTWAIT | MSG_NOSIGNAL;
void SilenceSignal(int) {}
#else
constexpr int kFlags = MSG_DONTWAIT;
void SilenceSignal(int socket) {
    const int on = 1;
    setsockopt(socket, SOL_SOCKET, SO_NOSIGPIPE, &on, sizeof on);
}
#endif

ssize_t Moved(ssize_t result) {
    if (result >= 0) return result;
    return errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR ? 0 : -1;
}

std::vector<char*> Pointers(std::vector<std::string>& arguments) {
    std::vector<char*> pointers;
    pointers.reserve(arguments.size() + 1);
    for (std::string& argument : arguments) pointers.push_back(argument.data());
    pointers.push_back(nullptr);
    return pointers;
}

// 0, or an error number of the system.
int Spawn(pid_t& process, const std::string& program, char** arguments, int standardInput) {
    posix_spawn_file_actions_t actions;
    if (const int error = posix_spawn_file_actions_init(&actions)) return error;
    int error = posix_spawn_file_actions_adddup2(&actions, standardInput, STDIN_FILENO);
    if (error == 0)
        error = posix_spawn(&process, program.c_str(), &actions, nullptr, arguments, environ);
    posix_spawn_file_actions_destroy(&actions);
    return error;
}

}  // namespace

Child::~Child() {
    if (socket >= 0) close(socket);
    if (process <= 0) return;
    kill(process, SIGKILL);
    while (waitpid(process, nullptr, 0) < 0 && errno == EINTR) continue;
}

std::string Child::Start(const std::string& program, std::vector<std::string> arguments) {
    int ends[2];
    if (socketpair(AF_UNIX, SOCK_STREAM, 0, ends) != 0) return std::strerror(errno);
    for (const int end : ends) fcntl(end, F_SETFD, FD_CLOEXEC);
    socket = ends[0];
    SilenceSignal(socket);
    arguments.insert(arguments.begin(), program);
    const int error = Spawn(process, program, Pointers(arguments).data(), ends[1]);
    close(ends[1]);
    if (error == 0) return "";
    process = -1;
    return program + ": " + std::strerror(error);
}

ssize_t Child::Send(std::span<const uint8_t> bytes) const {
    return Moved(send(socket, bytes.data(), bytes.size(), kFlags));
}

ssize_t Child::Receive(std::span<uint8_t> bytes) const {
    const ssize_t got = recv(socket, bytes.data(), bytes.size(), kFlags);
    return got == 0 ? -1 : Moved(got);
}

void Child::Wait(int64_t microseconds) const {
    constexpr int64_t kLongest = std::numeric_limits<int>::max();
    pollfd end{.fd = socket, .events = POLLIN, .revents = 0};
    poll(&end, 1, static_cast<int>(std::min((microseconds + 999) / 1000, kLongest)));
}

}  // namespace loopback
