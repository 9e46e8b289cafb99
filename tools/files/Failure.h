// What ends the work on a file before it is done: one line that names the file and the reason.
#pragma once

#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <string>

#include "CorvantisReading.h"

namespace corvantis::tool {

enum ExitCode : int { kFine = 0, kFindings = 1, kUnusable = 2 };

class Failure : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
    Failure(const std::string& path, const std::string& reason)
        : std::runtime_error(path + ": " + reason) {}
    explicit Failure(const CorvantisProblem& problem)
        : std::runtime_error(problem.text), code(problem.code) {}

    int32_t code = CORVANTIS_FILE_ERROR;
};

// With the system's reason for the call that has just failed.
inline Failure SystemFailure(const std::string& path) { return {path, std::strerror(errno)}; }

// Of a call of the reading library that was given the problem.
inline void Require(int32_t result, const CorvantisProblem& problem) {
    if (result != CORVANTIS_SUCCESS) throw Failure(problem);
}

}  // namespace corvantis::tool
