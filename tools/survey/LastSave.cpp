// Telling which bytes of an interrupted save have reached the file.
#include "survey/LastSave.h"

#include <fmt/core.h>

#include <algorithm>
#include <utility>

#include "survey/PositionTable.h"

namespace corvantis::tool {
namespace {

std::vector<uint8_t> BigEndian(const std::vector<uint32_t>& values) {
    std::vector<uint8_t> bytes;
    for (const uint32_t value : values) {
        for (int shift = 24; shift >= 0; shift -= 8) {
            bytes.push_back(static_cast<uint8_t>(value >> shift));
        }
    }
    return bytes;
}

// The table that the header leads to, and how much of it is left.
class OldTable {
  public:
    OldTable(const DataFile& file, const std::vector<EpochPlace>& epochs) : file_(file) {
        const int64_t counted = file.Header().numEpochs;
        position_ = counted == 0 ? kFirstEpoch : file.RecordedTablePosition();
        end_ = position_ + kPositionSize * std::max<int64_t>(counted, 0);
        const auto isBefore = [this](const EpochPlace& epoch) { return epoch.start < position_; };
        const auto behind = std::find_if_not(epochs.begin(), epochs.end(), isBefore);
        before_.assign(epochs.begin(), behind);
        const int64_t reached = before_.empty() ? kFirstEpoch : before_.back().end;
        isPlausible_ = counted >= 0 && reached <= position_ && epochs.end() - behind <= 1;
    }

    // One save leaves one epoch, right at the position. Anything else is a damaged header, which
    // says nothing about a save.
    bool IsPlausible() const { return isPlausible_; }
    int64_t Position() const { return position_; }
    int64_t End() const { return end_; }

    // Everything in front of this was written by the save.
    int64_t KnownNewEnd() const {
        if (file_.Size() > end_) return file_.Size();
        const auto counted = static_cast<size_t>(file_.Header().numEpochs);
        // Counts of failed saves, or of another file, make the old values unknown.
        if (before_.size() != counted || file_.Size() != end_) return position_;
        const std::vector<uint8_t> old = BigEndian(RecordedPositions(before_));
        const std::vector<uint8_t> found = file_.Bytes(position_, end_ - position_);
        size_t equal = 0;
        while (equal < old.size() && old[old.size() - 1 - equal] == found[old.size() - 1 - equal]) {
            ++equal;
        }
        // Without one whole value that is as expected, the expectation itself may be wrong.
        return equal < kPositionSize ? position_ : end_ - static_cast<int64_t>(equal);
    }

  private:
    const DataFile& file_;
    int64_t position_ = 0;
    int64_t end_ = 0;
    std::vector<EpochPlace> before_;
    bool isPlausible_ = false;
};

// The beginning of a table, or of its beginning where the file ends.
bool TableBegins(const DataFile& file, int64_t position, size_t leastBytes) {
    const std::vector<uint8_t> begin = BigEndian({static_cast<uint32_t>(kFirstEpoch)});
    const std::vector<uint8_t> found = file.Bytes(position, kPositionSize);
    return found.size() >= leastBytes && std::equal(found.begin(), found.end(), begin.begin());
}

bool IsComplete(const DataFile& file, const OldTable& old, const EpochPlace& epoch) {
    if (file.Size() > old.End()) return TableBegins(file, epoch.end, 0);
    return TableBegins(file, epoch.end, kPositionSize) || old.KnownNewEnd() >= epoch.end;
}

int32_t WholePoints(const EpochPlace& epoch, int64_t knownEnd) {
    const int64_t pointSize = int64_t{2} * epoch.entries;
    if (epoch.samples == 0) return 0;
    const int64_t points = (std::min(knownEnd, epoch.end) - epoch.samples) / pointSize;
    return static_cast<int32_t>(std::clamp<int64_t>(points, 0, epoch.points));
}

void SetAside(const DataFile& file, const OldTable& old, const EpochPlace& place, Mismatch mismatch,
              Survey& survey) {
    const bool saved = !old.IsPlausible() || place.start < old.Position();
    const int64_t knownEnd = saved ? file.Size() : old.KnownNewEnd();
    survey.unfinished = {place, WholePoints(place, knownEnd), std::move(mismatch)};
}

bool IsInDoubt(const OldTable& old, const std::vector<EpochPlace>& epochs) {
    return old.IsPlausible() && !epochs.empty() && epochs.back().start >= old.Position();
}

void KeepOrSetAsideLast(const DataFile& file, const OldTable& old, Survey& survey) {
    const EpochPlace place = survey.epochs.back();
    survey.tablePosition = place.end;
    if (IsComplete(file, old, place)) return;
    survey.epochs.pop_back();
    survey.tablePosition = place.start;
    SetAside(file, old, place,
             {"samples of which a part may be left over from earlier", "a table behind them"},
             survey);
}

}  // namespace

void JudgeLastSave(const DataFile& file, EpochReading reading, Survey& survey) {
    const OldTable old(file, survey.epochs);
    const int64_t position = reading.place.start;
    const bool hasHeader = file.Size() - position >= kEpochHeaderSize;
    if (IsInDoubt(old, survey.epochs)) {
        KeepOrSetAsideLast(file, old, survey);
    } else if (reading.condition == Condition::kCut && hasHeader) {
        SetAside(file, old, reading.place, std::move(reading.mismatch), survey);
    } else if (position < file.Size()) {
        survey.strays.push_back({position, file.Size(), std::move(reading.mismatch)});
    }
}

}  // namespace corvantis::tool
