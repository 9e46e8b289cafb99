// What ends a sub-command before its work is done: one line that names the file and the reason.
#pragma once

#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <string>

namespace corvantis::tool {

enum ExitCode : int { kFine = 0, kFindings = 1, kUnusable = 2 };

class Failure : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
    Failure(const std::string& path, const std::string& reason)
        : std::runtime_error(path + ": " + reason) {}
};

// With the system's reason for the call that has just failed.
inline Failure SystemFailure(const std::string& path) { return {path, std::strerror(errno)}; }

}  // namespace corvantis::tool
