// An epoch as a table: time, the recorded entries, and what they were stimulated with.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "files/Container.h"
#include "files/DataFile.h"

namespace corvantis::tool {

enum class Values { kUnits, kVolts, kCounts };

// A run of consecutive points of one column.
class Column {
  public:
    virtual ~Column() = default;
    virtual void Read(int64_t firstPoint, std::span<double> values) = 0;
    std::string name;
};

struct EpochTable {
    std::vector<std::unique_ptr<Column>> columns;
    int64_t points = 0;
    // Why a stimulus column is empty or doubtful, a line for each.
    std::vector<std::string> remarks;
};

// The table reads from the file, which must outlive it.
EpochTable MakeEpochTable(const DataFile& file, const EpochPlace& place, Values values);

// Adds the stimulus, whose noise begins where this process's generators stand.
void AddStimulus(const DataFile& file, const EpochPlace& place, Values values, EpochTable& table);

}  // namespace corvantis::tool
