// Walking from epoch to epoch, past damaged ones, until the table or the end of the file.
#include "survey/Survey.h"

#include <algorithm>
#include <utility>

#include "survey/Account.h"
#include "survey/EpochSearch.h"
#include "survey/LastSave.h"
#include "survey/PositionTable.h"
#include "survey/TableEnd.h"
#include "text/Words.h"

namespace corvantis::reading {
namespace {

constexpr int64_t kLargestShift = 288;  // of one epoch: eight waves, more than it has entries
constexpr int kLandmarksAhead = 64;     // tried before the table is no longer believed

class Walk {
  public:
    explicit Walk(const FileView& file) : file_(file), account_(file) {}

    Survey Follow() {
        if (!FollowAccount() && !FollowCount()) {
            account_.FindTableAtEnd(file_);
            Restart();
        }
        while (!ReachTable()) {
            EpochReading reading = Read();
            if (IsLastSave(reading)) return EndWithLastSave(std::move(reading));
            if (Belongs(reading)) {
                Keep(reading);
            } else if (!PassOver(reading)) {
                return EndWith(std::move(reading));
            }
        }
        Survey survey = End();
        survey.tableIsWhole = true;
        FindTableEnd(file_, account_, survey);
        return survey;
    }

  private:
    int64_t Count() const { return static_cast<int64_t>(survey_.epochs.size()); }
    int64_t NextNumber() const {
        return survey_.epochs.empty() ? 0 : survey_.epochs.back().number + 1;
    }

    // The usual file: the epochs end to end from the first to the table's place. Nothing that such
    // epochs hold can lead astray.
    bool FollowAccount() {
        if (!account_.HasPlace()) return false;
        bool hasBlank = false;
        while (position_ < account_.Place()) {
            EpochReading reading = Read();
            if (IsUnreadable(reading) || IsHole(reading)) return false;
            hasBlank = hasBlank || IsBlank(reading);
            Keep(reading);
        }
        return position_ == account_.Place() && IsAsCounted(hasBlank);
    }

    // A lost block of zeros, or an epoch of nothing, which table or count must account for.
    static bool IsBlank(const EpochReading& reading) {
        return reading.condition == Condition::kNoEntries &&
               reading.content.header.samplingInterval == 0;
    }

    bool IsHole(const EpochReading& reading) const {
        return IsBlank(reading) && file_.NextData(position_) >= reading.place.end;
    }

    static bool IsUnreadable(const EpochReading& reading) {
        return reading.condition > Condition::kUnknownType || reading.place.end == 0;
    }

    // Saves that failed are counted too. While a save writes the header, its place may be one save
    // ahead of its count.
    bool IsAsCounted(bool hasBlank) {
        const int64_t counted = account_.Count();
        if (Count() == 0) return counted == 0;
        if (account_.Number(survey_.epochs)) return true;
        if (!account_.IsWholeTable(file_, survey_.epochs)) account_.ForgetTable();
        if (Count() == counted) return true;
        return !account_.HasTable() && !hasBlank && Count() <= counted + 1;
    }

    // While a save writes the header, its count may be ahead of its place.
    bool FollowCount() {
        const Account before = account_;
        const int64_t place = file_.Size() - kPositionSize * account_.Count();
        Restart();
        if (account_.Count() > 0 && place != account_.Place() && account_.TakeTable(file_, place) &&
            FollowAccount() && account_.HasTable()) {
            return true;
        }
        account_ = before;
        return false;
    }

    void Restart() {
        survey_ = {};
        position_ = kFirstEpoch;
        shift_ = 0;
    }

    bool IsAtPlace() const { return account_.HasPlace() && position_ == account_.Place(); }

    // The place that the header of a sound file has for the next save.
    bool IsAtSave() const {
        return IsAtPlace() && !account_.HasTable() && (Count() > 0 || account_.Count() == 0);
    }

    bool ReachTable() { return (IsAtSave() && FollowToNewTable()) || IsAtTable(); }

    bool IsAtTable() const {
        if (account_.HasTable()) return IsAtPlace();
        if (IsAtPlace() && IsLeftAsTable()) return true;
        if (!IsExactTable(file_, position_, survey_.epochs)) return false;
        // The bits of a table's single value can as well be the time of an epoch.
        return Count() != 1 || position_ + kPositionSize == file_.Size() ||
               ReadEpochAt(file_, position_).condition != Condition::kWhole;
    }

    // A save overwrites the beginning first; one that failed puts it back first.
    bool IsLeftAsTable() const {
        return Count() > 0 && IsTable(file_, position_, 1) &&
               file_.Size() >= position_ + kPositionSize * Count();
    }

    // Of the epoch that the header does not count yet, or of several after a loss of power.
    bool FollowToNewTable() {
        const Survey before = survey_;
        const int64_t position = position_, shift = shift_;
        for (EpochReading reading = Read(); reading.condition <= Condition::kNoEntries;
             reading = Read()) {
            Keep(reading);
            if (IsTable(file_, position_, 1) && IsNewTable()) return true;
        }
        survey_ = before;
        position_ = position;
        shift_ = shift;
        return false;
    }

    bool IsNewTable() {
        if (IsExactTable(file_, position_, survey_.epochs)) return true;
        const Account before = account_;
        if (account_.TakeTable(file_, position_) && account_.Number(survey_.epochs)) return true;
        account_ = before;
        return false;
    }

    // Where the header counts no epoch, there may have been other saves.
    bool IsLastSave(const EpochReading& reading) const {
        return IsAtSave() && (account_.Count() > 0 || reading.condition == Condition::kCut ||
                              IsCompleteSave(file_, reading));
    }

    Survey EndWithLastSave(EpochReading reading) {
        if (!IsCompleteSave(file_, reading)) return EndWith(std::move(reading));
        Keep(reading);
        return End();
    }

    Survey EndWith(EpochReading reading) {
        SetAsideRest(file_, std::move(reading), survey_);
        return End();
    }

    EpochReading Read() const {
        EpochReading reading = ReadEpochAt(file_, position_);
        if (reading.condition == Condition::kUnknownType) EndsAt(reading, EndOfUnknown(reading));
        return reading;
    }

    // Where the next epoch begins, or the table.
    int64_t EndOfUnknown(const EpochReading& reading) const {
        if (NextSound()) return account_.Next(position_, shift_).start;
        const EpochPlace& place = reading.place;
        const int64_t least =
            position_ + kEpochHeaderSize + int64_t{2} * place.points * place.entries;
        const bool hasPlaceBehind = account_.HasPlace() && account_.Place() >= least;
        const int64_t limit = hasPlaceBehind ? account_.Place() : file_.Size();
        return FindEpoch(file_, least, limit).value_or(hasPlaceBehind ? limit : 0);
    }

    bool IsSoundAt(int64_t position) const {
        const EpochReading reading = ReadEpochAt(file_, position);
        if (reading.condition == Condition::kNoEntries) {
            return account_.Next(position, shift_).start == reading.place.end;
        }
        return reading.condition <= Condition::kUnknownType;
    }

    // The next place of the table where an epoch begins; nothing if the table cannot be believed.
    std::optional<Landmark> NextSound() const {
        if (!account_.HasTable() || position_ >= account_.Place()) return std::nullopt;
        Landmark next = account_.Next(position_, shift_);
        if (next.start == account_.Place()) return next;
        for (int tried = 0; tried < kLandmarksAhead && next.start < account_.Place(); ++tried) {
            if (IsSoundAt(next.start)) return next;
            next = account_.Next(next.start, shift_);
        }
        return std::nullopt;
    }

    // Whether it is an epoch that contradicts nothing the table accounts for.
    bool Belongs(EpochReading& reading) const {
        if (IsUnreadable(reading)) return false;
        const int64_t end = reading.place.end;
        const bool isAccounted = account_.NumberAt(position_, shift_).has_value();
        if (reading.condition == Condition::kNoEntries) {
            return isAccounted && account_.Next(position_, shift_).start == end;
        }
        const std::optional<Landmark> next = NextSound();
        if (!next) return !account_.HasTable() || end <= account_.Place();
        // A value of the table may lead astray; samples that look like an epoch have none.
        if (end <= next->start && (isAccounted || NextNumber() < next->number)) return true;
        reading.mismatch = LeadsAstray(end, next->start);
        return false;
    }

    static Mismatch LeadsAstray(int64_t end, int64_t next) {
        return {Say("an epoch that ends at ", end),
                Say("its end at ", next, ", where the next one begins")};
    }

    void Keep(EpochReading& reading) {
        reading.place.number = account_.NumberAt(position_, shift_).value_or(NextNumber());
        if (reading.place.number < NextNumber()) reading.place.number = NextNumber();
        if (reading.condition == Condition::kUnknownType) {
            survey_.remarks.push_back({position_, reading.place.number, reading.mismatch});
        }
        survey_.epochs.push_back(reading.place);
        position_ = reading.place.end;
        // A table that a repair has written has the real places.
        const bool isReal = account_.NumberAt(position_, 0).has_value();
        shift_ = isReal ? 0 : shift_ + reading.place.overcounted;
    }

    // Goes on behind what is no epoch; false if nothing more can be expected.
    bool PassOver(const EpochReading& reading) {
        const int64_t begin = position_;
        if (NextSound()) {
            const Landmark next = account_.Next(position_, shift_);
            auto number = account_.NumberAt(position_, shift_);
            survey_.strays.push_back({begin, next.start, reading.mismatch, number});
            position_ = next.start;
            return true;
        }
        const std::optional<int64_t> next = Search(reading);
        if (!next) return false;
        PassOverTo(*next, reading.mismatch);
        return true;
    }

    // The next epoch or the table, but only where the header says that epochs lie: behind them, an
    // interrupted save and the table it overwrites are all there is.
    std::optional<int64_t> Search(const EpochReading& reading) const {
        const int64_t place = account_.Place();
        if (account_.HasPlace() && position_ >= place && account_.Count() > 0) return std::nullopt;
        if (CoversTheRest(reading)) return std::nullopt;
        const bool hasPlace = account_.HasPlace() && account_.Count() > 0;
        const int64_t until = hasPlace ? place : file_.Size();
        if (const auto before = FindInLastEpoch()) return before;
        const std::optional<int64_t> next = FindEpoch(file_, position_ + 2, until);
        if (next || !hasPlace || !IsTable(file_, place, Count())) return next;
        return place;
    }

    // The file ends before the epoch does, and the header does not lead further: the first save was
    // interrupted, or the file truncated.
    bool CoversTheRest(const EpochReading& reading) const {
        if (reading.condition != Condition::kCut) return false;
        const bool isTruncated = account_.Place() > file_.Size() &&
                                 reading.place.end <= account_.Place() &&
                                 account_.Count() > Count();
        return account_.Count() == 0 || isTruncated;
    }

    // A length that was damaged leads astray, so the next epoch may begin inside the one before.
    // What its samples may hold, epochs of another file, does not lead beyond their end.
    std::optional<int64_t> FindInLastEpoch() const {
        if (survey_.epochs.empty()) return std::nullopt;
        int64_t from = survey_.epochs.back().start + 2;
        while (const auto found = FindEpoch(file_, from, position_)) {
            from = EndOfSoundEpochs(file_, *found, position_ + 1);
            if (from > position_) return found;
        }
        return std::nullopt;
    }

    void PassOverTo(int64_t next, const Mismatch& mismatch) {
        int64_t begin = position_;
        Mismatch why = mismatch;
        if (next < position_) {
            begin = survey_.epochs.back().start;
            survey_.epochs.pop_back();
            why = LeadsAstray(position_, next);
        }
        survey_.strays.push_back({begin, next, why, account_.NumberAt(begin, shift_)});
        position_ = next;
        if (next == account_.Place()) return;
        FindShift();
        survey_.remarks.push_back({next,
                                   account_.NumberAt(next, shift_).value_or(NextNumber()),
                                   {"an epoch by searching, which may be samples of a damaged one "
                                    "that look like an epoch",
                                    "epochs that follow each other without a gap"},
                                   true});
    }

    // A damaged epoch may have had waves without bytes, which the table counts.
    void FindShift() {
        const int64_t more = account_.Next(position_ - 1, shift_).start - position_;
        if (account_.HasTable() && more % 4 == 0 && more <= kLargestShift) shift_ += more;
    }

    void OrderDamaged() {
        std::vector<Stretch>& strays = survey_.strays;
        for (size_t i = 0; i < strays.size(); ++i) {
            if (!strays[i].number) continue;
            survey_.damaged.push_back(i);
            survey_.numbers = std::max(survey_.numbers, *strays[i].number + 1);
        }
        std::stable_sort(survey_.damaged.begin(), survey_.damaged.end(),
                         [&](size_t a, size_t b) { return strays[a].number < strays[b].number; });
    }

    Survey End() {
        survey_.tablePosition = position_;
        survey_.numbers = NextNumber();
        OrderDamaged();
        return std::move(survey_);
    }

    const FileView& file_;
    Account account_;
    Survey survey_;
    int64_t position_ = kFirstEpoch;
    int64_t shift_ = 0;  // of the table's values, beyond the real places
};

}  // namespace

Survey SurveyFile(const FileView& file) { return Walk(file).Follow(); }

}  // namespace corvantis::reading
