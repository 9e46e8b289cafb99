// Where results, messages and progress go.
#pragma once

#include <fmt/core.h>

#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>

namespace corvantis::tool {

struct Terminal {
    FILE* results = nullptr;
    FILE* messages = nullptr;
    bool quiet = false;  // no progress, and no results that only say that all is well

    template <class... Values>
    void Print(fmt::format_string<Values...> format, const Values&... values) const {
        fmt::vprint(results, format, fmt::make_format_args(values...));
    }
    template <class... Values>
    void Say(fmt::format_string<Values...> format, const Values&... values) const {
        // No exception, unlike fmt's own: a lost message changes neither results nor exit code.
        std::fputs(fmt::vformat(format, fmt::make_format_args(values...)).c_str(), messages);
    }
};

// The library prints lines of its own on standard output. This takes the real one away for the
// tool's results and leaves the library one that goes nowhere. Call it once, before anything else.
// Throws a Failure if it is closed, since every result would be lost.
FILE* TakeStandardOutput();

// A percentage that is rewritten in place, on a terminal only, and gone at the end.
class Progress {
  public:
    Progress(const Terminal& terminal, std::string what, int64_t total);
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress();
    void Reach(int64_t done);

  private:
    FILE* stream_;
    std::string what_;
    int64_t total_;
    int64_t shown_ = -1;
};

}  // namespace corvantis::tool
