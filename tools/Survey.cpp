// Walking from epoch to epoch, past damaged ones, until the table or the end of the file.
#include "Survey.h"

#include <fmt/core.h>

#include <algorithm>
#include <utility>

#include "EpochSearch.h"
#include "LastSave.h"

namespace corvantis {
namespace {

constexpr int64_t kTablePiece = 64;

class Walk {
  public:
    Walk(const DataFile& file, const Terminal& terminal)
        : file_(file), terminal_(terminal), progress_(terminal, "walking", file.Size()) {}

    Survey Follow() {
        int64_t position = kFirstEpoch;
        while (!IsTable(file_, position, Count())) {
            progress_.Reach(position);
            EpochReading reading = ReadEpochAt(file_, position);
            if (reading.condition == Condition::kWhole) {
                position = reading.place.end;
                survey_.epochs.push_back(reading.place);
                continue;
            }
            const std::optional<int64_t> next = Search(position);
            if (!next && IsDamagedTable(position)) break;
            if (!next) {
                survey_.tablePosition = position;
                JudgeLastSave(file_, std::move(reading), survey_);
                return std::move(survey_);
            }
            PassOver(position, *next, reading.mismatch);
            position = *next;
        }
        survey_.tablePosition = position;
        survey_.tableIsWhole = true;
        FindTableEnd();
        return std::move(survey_);
    }

  private:
    int64_t Count() const { return static_cast<int64_t>(survey_.epochs.size()); }

    // A save overwrites the beginning first, so what still has it was not overwritten.
    bool IsDamagedTable(int64_t position) const {
        const ITCFileHeader& header = file_.Header();
        return file_.RecordedTablePosition() == position && header.numEpochs == Count() &&
               file_.Size() >= position + kPositionSize * Count() && IsTable(file_, position, 1);
    }

    // The next epoch or the table, but only where the header says that epochs lie: behind them, an
    // interrupted save and the table it overwrites are all there is. A length that was damaged
    // leads astray, so the search begins inside the epoch before.
    std::optional<int64_t> Search(int64_t position) const {
        const int64_t recorded = file_.RecordedTablePosition();
        const bool believable = recorded >= kFirstEpoch && recorded <= file_.Size();
        if (believable && position >= recorded) return std::nullopt;
        const int64_t from = survey_.epochs.empty() ? position : survey_.epochs.back().start;
        const std::optional<int64_t> next = FindEpoch(file_, from + 2, terminal_);
        if (next || !believable || !IsTable(file_, recorded, Count())) return next;
        return recorded;
    }

    void PassOver(int64_t position, int64_t next, const Mismatch& mismatch) {
        if (next >= position) {
            survey_.strays.push_back({position, next, mismatch});
            return;
        }
        const int64_t begin = survey_.epochs.back().start;
        survey_.epochs.pop_back();
        survey_.strays.push_back({begin,
                                  next,
                                  {fmt::format("an epoch that ends at {}", position),
                                   fmt::format("its end at {}, where the next one begins", next)}});
    }

    // A file that took over the count of another has more entries than epochs.
    void FindTableEnd() {
        const int64_t counted = file_.Header().numEpochs;
        const bool recordedHere = file_.RecordedTablePosition() == survey_.tablePosition;
        const int64_t room = (file_.Size() - survey_.tablePosition) / kPositionSize;
        const bool believable = recordedHere && counted >= Count() && counted <= room;
        survey_.tableEntries = believable ? counted : Count();
        const int64_t end = survey_.tablePosition + kPositionSize * survey_.tableEntries;
        if (end < file_.Size()) {
            survey_.strays.push_back({end,
                                      file_.Size(),
                                      {fmt::format("{} bytes behind the table", file_.Size() - end),
                                       "the end of the file"}});
        }
    }

    const DataFile& file_;
    const Terminal& terminal_;
    Progress progress_;
    Survey survey_;
};

}  // namespace

// In pieces, up to the first value that no table has there: asked for at every epoch, it may not
// read what lies behind.
bool IsTable(const DataFile& file, int64_t position, int64_t entries) {
    if (entries == 0) return position == file.Size();
    auto last = static_cast<uint32_t>(kFirstEpoch);
    for (int64_t done = 0; done < entries;) {
        const std::vector<uint32_t> piece =
            file.Positions(position + kPositionSize * done, std::min(entries - done, kTablePiece));
        if (piece.empty() || piece.front() < last) return false;
        if (done == 0 && piece.front() != last) return false;
        if (!std::is_sorted(piece.begin(), piece.end())) return false;
        last = piece.back();
        done += static_cast<int64_t>(piece.size());
    }
    return true;
}

std::vector<uint32_t> RecordedPositions(const std::vector<EpochPlace>& epochs) {
    std::vector<uint32_t> positions;
    int64_t overcounted = 0;
    for (const EpochPlace& epoch : epochs) {
        positions.push_back(static_cast<uint32_t>(epoch.start + overcounted));
        overcounted += epoch.overcounted;
    }
    return positions;
}

Survey SurveyFile(const DataFile& file, const Terminal& terminal) {
    return Walk(file, terminal).Follow();
}

}  // namespace corvantis
