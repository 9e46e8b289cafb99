// Reading the table of positions, and telling its values that can be believed.
#include "survey/Account.h"

#include <algorithm>
#include <utility>

#include "survey/PositionTable.h"

namespace corvantis::reading {
namespace {

constexpr int64_t kTablePiece = 4096;

// Whether the epoch that the last value leads to ends where the table begins.
bool LeadsTo(const FileView& file, uint32_t last, int64_t table) {
    EpochReading reading = ReadEpochAt(file, last);
    const bool hasEnd = reading.condition <= Condition::kNoEntries;
    return hasEnd ? reading.place.end == table : EndsAt(reading, table);
}

// In pieces, so that a damaged count does not ask for memory that no table fills.
std::vector<uint32_t> ReadTable(const FileView& file, int64_t place, int64_t count) {
    std::vector<uint32_t> table;
    while (static_cast<int64_t>(table.size()) < count) {
        const auto done = static_cast<int64_t>(table.size());
        const auto piece =
            file.Positions(place + kPositionSize * done, std::min(count - done, kTablePiece));
        if (piece.empty() || *std::min_element(piece.begin(), piece.end()) == 0) return {};
        table.insert(table.end(), piece.begin(), piece.end());
    }
    return table;
}

bool IsBefore(const Landmark& landmark, int64_t start) { return landmark.start < start; }

}  // namespace

Account::Account(const FileView& file)
    : count_(file.Header().numEpochs), place_(file.RecordedTablePosition()) {
    if (count_ == 0) place_ = kFirstEpoch;  // whatever the header of an empty file says
    hasPlace_ = count_ >= 0 && place_ >= kFirstEpoch && place_ <= file.Size();
    const bool endsFile = place_ + kPositionSize * count_ == file.Size();
    if (hasPlace_ && endsFile) SetTable(ReadTable(file, place_, count_));
}

void Account::SetTable(std::vector<uint32_t> table) {
    table_ = std::move(table);
    landmarks_.clear();
    for (size_t i = 0; i < table_.size(); ++i) {
        landmarks_.push_back({table_[i], static_cast<int64_t>(i)});
    }
    std::stable_sort(landmarks_.begin(), landmarks_.end(),
                     [](const Landmark& a, const Landmark& b) { return a.start < b.start; });
}

bool Account::TakeTable(const FileView& file, int64_t place) {
    const int64_t entries = (file.Size() - place) / kPositionSize;
    const bool endsFile = place + kPositionSize * entries == file.Size();
    if (place < kFirstEpoch || !endsFile || !IsTable(file, place, 1)) return false;
    std::vector<uint32_t> table = ReadTable(file, place, entries);
    if (table.empty()) return false;
    SetTable(std::move(table));
    count_ = entries;
    place_ = place;
    hasPlace_ = true;
    return true;
}

// Backwards from the end of the file, for as long as its words can be values of a table.
void Account::FindTableAtEnd(const FileView& file) {
    if (HasTable()) return;
    int64_t entries = 0;
    uint32_t behind = 0, last = 0;
    for (int64_t end = file.Size(); end >= kFirstEpoch;) {
        const int64_t count = std::min((end - kFirstEpoch) / kPositionSize, kTablePiece);
        end -= kPositionSize * count;
        const std::vector<uint32_t> piece = file.Positions(end, count);
        if (piece.empty()) return;
        for (auto value = piece.rbegin(); value != piece.rend(); ++value) {
            const bool fits = entries == 0 || *value <= behind;
            if (!fits || *value < kFirstEpoch || *value >= file.Size()) return;
            behind = *value;
            if (entries == 0) last = *value;
            const int64_t place = file.Size() - kPositionSize * ++entries;
            if (*value != kFirstEpoch || !LeadsTo(file, last, place)) continue;
            TakeTable(file, place);
            return;
        }
        if (count < kTablePiece) return;
    }
}

std::optional<int64_t> Account::NumberAt(int64_t position, int64_t shift) const {
    const int64_t recorded = position + shift;
    // Of equal values the last one: those before it were counted by saves that failed.
    const auto behind =
        std::lower_bound(landmarks_.begin(), landmarks_.end(), recorded + 1, IsBefore);
    if (behind == landmarks_.begin() || (behind - 1)->start != recorded) return std::nullopt;
    return (behind - 1)->number;
}

Landmark Account::Next(int64_t position, int64_t shift) const {
    const auto next =
        std::lower_bound(landmarks_.begin(), landmarks_.end(), position + shift + 1, IsBefore);
    if (next == landmarks_.end() || next->start - shift >= place_) return {place_, count_};
    const int64_t start = next->start - shift;
    return {start, NumberAt(start, shift).value_or(next->number)};
}

bool Account::Number(std::vector<EpochPlace>& epochs) const {
    std::vector<EpochPlace> numbered = epochs;
    int64_t overcounted = 0;
    for (const EpochPlace& epoch : epochs) overcounted += epoch.overcounted;
    size_t left = table_.size();
    for (auto epoch = numbered.rbegin(); epoch != numbered.rend(); ++epoch) {
        overcounted -= epoch->overcounted;
        if (left == 0) return false;
        const int64_t recorded = table_[--left];
        if (recorded != epoch->start && recorded != epoch->start + overcounted) return false;
        epoch->number = static_cast<int64_t>(left);
        while (left > 0 && table_[left - 1] == recorded) --left;
    }
    epochs = std::move(numbered);
    return true;
}

bool Account::IsWholeTable(const FileView& file, const std::vector<EpochPlace>& epochs) const {
    if (!HasTable() || !IsTable(file, place_, count_)) return false;
    const bool isLast = !epochs.empty() && table_.back() == RecordedPositions(epochs).back();
    return isLast || LeadsTo(file, table_.back(), place_);
}

}  // namespace corvantis::reading
