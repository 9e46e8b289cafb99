// Where results, messages and progress go.
#pragma once

#include <fmt/core.h>

#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>

namespace corvantis::tool {

// A stream, or a text in memory that stands for one.
class Output {
  public:
    Output(FILE* stream) : stream_(stream) {}
    Output(std::string& text) : text_(&text) {}

    void Write(std::string_view text) const {
        if (text_ != nullptr) {
            text_->append(text);
        } else {
            std::fwrite(text.data(), 1, text.size(), stream_);
        }
    }
    FILE* Stream() const { return stream_; }  // null for a text

  private:
    FILE* stream_ = nullptr;
    std::string* text_ = nullptr;
};

struct Terminal {
    Output results;
    Output messages;
    bool quiet = false;  // no progress, and nothing that only says that all is well

    // Neither throws on a stream, unlike fmt's own. Lost results stay in the stream as its error,
    // for the end; a lost message changes neither results nor exit code.
    template <class... Values>
    void Print(fmt::format_string<Values...> format, const Values&... values) const {
        results.Write(fmt::vformat(format, fmt::make_format_args(values...)));
    }
    template <class... Values>
    void Say(fmt::format_string<Values...> format, const Values&... values) const {
        messages.Write("corvantis: " + fmt::vformat(format, fmt::make_format_args(values...)));
    }
};

// Standard streams take bytes as they are, and files that are opened later do not become those that
// are closed. Throws a Failure if standard output is, since every result would be lost.
void PrepareStandardStreams();

// Whether people read it as it comes; not of a file, nor without a stream.
bool IsScreen(FILE* stream);

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
