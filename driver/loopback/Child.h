// A program of our own at the other end of a socket.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace loopback {

class Child {
  public:
    Child() = default;
    // Ends the program, whatever it is doing.
    ~Child();
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    // Starts it with the socket as its standard input. "", or what the system says.
    std::string Start(const std::string& program, std::vector<std::string> arguments);

    // Sends or receives what can be moved now; -1: the program has ended.
    ssize_t Send(std::span<const uint8_t> bytes) const;
    ssize_t Receive(std::span<uint8_t> bytes) const;

    // Waits until something is to be received, or for so long.
    void Wait(int64_t microseconds) const;

  private:
    int socket = -1;
    pid_t process = -1;
};

}  // namespace loopback
