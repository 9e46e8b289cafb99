// What the file header and the table of positions account for.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "bytes/FileView.h"
#include "epochs/EpochLayout.h"

namespace corvantis::reading {

// A place that the table leads to, and the number of what should be there; behind the last epoch
// the table itself.
struct Landmark {
    int64_t start = 0;
    int64_t number = 0;
};

class Account {
  public:
    // By the header, and by the table where it leads to one that ends the file.
    explicit Account(const FileView& file);

    // Where the header leads astray: takes the rest of the file from there, or what looks like a
    // table at its end, for the table. Nothing changes if that is none.
    bool TakeTable(const FileView& file, int64_t place);
    void FindTableAtEnd(const FileView& file);
    void ForgetTable() { SetTable({}); }

    // Whether it leads to a place within the file.
    bool HasPlace() const { return hasPlace_; }
    int64_t Place() const { return place_; }
    int64_t Count() const { return count_; }
    // Whether the file ends with a table of so many values at that place. Single ones may be wrong.
    bool HasTable() const { return !table_.empty(); }

    // Recorded positions are beyond the real ones after waves without bytes: by the shift.
    std::optional<int64_t> NumberAt(int64_t position, int64_t shift) const;
    Landmark Next(int64_t position, int64_t shift) const;

    // Gives the epochs the numbers of the values that lead to them. False if one has no value, or a
    // value between the first and the last leads to none of them: those in front of them are of
    // another file that was open before.
    bool Number(std::vector<EpochPlace>& epochs) const;

    // Whether its values are in order and the last one leads to an epoch that ends at the table:
    // otherwise a save has overwritten it.
    bool IsWholeTable(const FileView& file, const std::vector<EpochPlace>& epochs) const;

  private:
    void SetTable(std::vector<uint32_t> table);

    int64_t count_;
    int64_t place_;
    bool hasPlace_;
    std::vector<uint32_t> table_;
    std::vector<Landmark> landmarks_;  // in the order of their recorded positions
};

}  // namespace corvantis::reading
