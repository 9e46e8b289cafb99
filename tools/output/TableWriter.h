// Tables of numbers as CSV text or as a NumPy array.
#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace corvantis::tool {

class TableWriter {
  public:
    virtual ~TableWriter() = default;
    // Errors stay in the stream, for the end.
    virtual void WriteRow(std::span<const double> values) = 0;
};

// A header line of the names, then a line per row; shortest digits that give the number back, and
// nothing where a value is not a number.
std::unique_ptr<TableWriter> MakeCsvWriter(FILE* stream, const std::vector<std::string>& names);

// One array of doubles, rows by columns, format version 1.0.
std::unique_ptr<TableWriter> MakeNpyWriter(FILE* stream, int64_t rows, size_t columns);

}  // namespace corvantis::tool
