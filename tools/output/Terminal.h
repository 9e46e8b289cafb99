// Where results, messages and progress go.
#pragma once

#include <fmt/core.h>

#include <cstdint>
#include <cstdio>
#include <string>

namespace corvantis::tool {

struct Terminal {
    FILE* results = nullptr;
    FILE* messages = nullptr;
    bool quiet = false;  // no progress, and nothing that only says that all is well

    // Neither throws, unlike fmt's own. Lost results stay in the stream as its error, for the end;
    // a lost message changes neither results nor exit code.
    template <class... Values>
    void Print(fmt::format_string<Values...> format, const Values&... values) const {
        Write(results, fmt::vformat(format, fmt::make_format_args(values...)));
    }
    template <class... Values>
    void Say(fmt::format_string<Values...> format, const Values&... values) const {
        Write(messages, "corvantis: " + fmt::vformat(format, fmt::make_format_args(values...)));
    }

  private:
    static void Write(FILE* stream, const std::string& text) {
        std::fwrite(text.data(), 1, text.size(), stream);
    }
};

// Keeps files that are opened later from becoming standard streams that are closed. Throws a
// Failure if standard output is, since every result would be lost.
void SecureStandardStreams();

// A percentage that is rewritten in place, on a terminal only, and gone at the end.
class Progress {
  public:
    Progress(const Terminal& terminal, std::string what, int64_t total);
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress();
    void Reach(int64_t done);
    // Before something else is written there.
    void Clear();

  private:
    FILE* stream_;
    std::string what_;
    int64_t total_;
    int64_t shown_ = -1;
};

}  // namespace corvantis::tool
