// Writing CSV and NumPy's file format.
#include "output/TableWriter.h"

#include <fmt/format.h>

#include <bit>
#include <cmath>
#include <iterator>

namespace corvantis::tool {
namespace {

class CsvWriter : public TableWriter {
  public:
    CsvWriter(FILE* stream, const std::vector<std::string>& names) : stream_(stream) {
        std::string line;
        for (const std::string& name : names)
            line.append(line.empty() ? "" : ",").append(Quoted(name));
        line.push_back('\n');
        std::fputs(line.c_str(), stream_);
    }

    void WriteRow(std::span<const double> values) override {
        line_.clear();
        for (size_t i = 0; i < values.size(); ++i) {
            if (i > 0) line_.push_back(',');
            if (!std::isnan(values[i])) fmt::format_to(std::back_inserter(line_), "{}", values[i]);
        }
        line_.push_back('\n');
        std::fwrite(line_.data(), 1, line_.size(), stream_);
    }

  private:
    // Units are free text.
    static std::string Quoted(const std::string& name) {
        if (name.find_first_of(",\"") == std::string::npos) return name;
        std::string quoted = "\"";
        for (const char c : name) quoted += c == '"' ? "\"\"" : std::string(1, c);
        return quoted + "\"";
    }

    FILE* stream_;
    fmt::memory_buffer line_;
};

constexpr size_t kNpyAlignment = 64;
constexpr size_t kNpyPrefix = 10;  // magic, version, and the length of what follows

class NpyWriter : public TableWriter {
  public:
    NpyWriter(FILE* stream, int64_t rows, size_t columns) : stream_(stream) {
        const char order = std::endian::native == std::endian::little ? '<' : '>';
        std::string text =
            fmt::format("{{'descr': '{}f8', 'fortran_order': False, 'shape': ({}, {}), }}", order,
                        rows, columns);
        const size_t padding = kNpyAlignment - (kNpyPrefix + text.size() + 1) % kNpyAlignment;
        text += std::string(padding % kNpyAlignment, ' ') + '\n';
        const std::string magic("\x93NUMPY\x01\x00", 8);
        std::fwrite(magic.data(), 1, magic.size(), stream_);
        std::fputc(static_cast<int>(text.size() & 0xFF), stream_);
        std::fputc(static_cast<int>(text.size() >> 8), stream_);
        std::fwrite(text.data(), 1, text.size(), stream_);
    }

    void WriteRow(std::span<const double> values) override {
        std::fwrite(values.data(), sizeof(double), values.size(), stream_);
    }

  private:
    FILE* stream_;
};

}  // namespace

std::unique_ptr<TableWriter> MakeCsvWriter(FILE* stream, const std::vector<std::string>& names) {
    return std::make_unique<CsvWriter>(stream, names);
}

std::unique_ptr<TableWriter> MakeNpyWriter(FILE* stream, int64_t rows, size_t columns) {
    return std::make_unique<NpyWriter>(stream, rows, columns);
}

}  // namespace corvantis::tool
