// Keeps a program's standard output to itself: the lines that the library prints go to a log file.
#pragma once

#include <cstdio>
#include <string>

class OwnOutput {
  public:
    // From here on whatever is printed on standard output is appended to the log.
    explicit OwnOutput(const std::string& log);
    ~OwnOutput();
    OwnOutput(const OwnOutput&) = delete;
    OwnOutput& operator=(const OwnOutput&) = delete;

    // Where the program prints: what standard output was before.
    FILE* Stream() const { return stream; }

  private:
    FILE* stream;
};
