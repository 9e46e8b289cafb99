// An epoch as a table: time, the recorded entries, and what they were stimulated with.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "files/DataFile.h"
#include "files/EpochRecords.h"

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
EpochTable MakeEpochTable(const DataFile& file, const EpochRecords& epoch, Values values);

void AddStimulus(const DataFile& file, const EpochRecords& epoch, Values values, EpochTable& table);

}  // namespace corvantis::tool
