// Telling the table of positions from what lies behind it.
#include "survey/TableEnd.h"

#include "text/Words.h"

namespace corvantis::reading {
namespace {

// The only value of the table is where it is the epoch's own place, a number that a time may have
// the bits of.
void SayIfInDoubt(const FileView& file, Survey& survey) {
    const EpochReading reading = ReadEpochAt(file, survey.tablePosition);
    if (reading.condition > Condition::kCut || reading.place.entries == 0) return;
    survey.remarks.push_back({survey.tablePosition,
                              survey.numbers,
                              {"a table with bytes behind it, or an epoch whose save was "
                               "interrupted and whose time has the bits of 580",
                               "one of the two; it is taken for the table"},
                              true});
}

// A file that took over the count of another has more entries than epochs.
int64_t EntriesOf(const FileView& file, const Account& account, const Survey& survey,
                  int64_t room) {
    const bool isAccounted = account.HasTable() && account.Place() == survey.tablePosition;
    if (isAccounted) return account.Count();
    const auto found = static_cast<int64_t>(survey.epochs.size());
    const int64_t counted = file.Header().numEpochs;
    const bool isRecordedHere = file.RecordedTablePosition() == survey.tablePosition;
    return isRecordedHere && counted >= found && counted <= room ? counted : found;
}

}  // namespace

void FindTableEnd(const FileView& file, const Account& account, Survey& survey) {
    const int64_t room = (file.Size() - survey.tablePosition) / kPositionSize;
    survey.tableEntries = EntriesOf(file, account, survey, room);
    if (survey.epochs.size() == 1 && room > 1) SayIfInDoubt(file, survey);
    const int64_t end = survey.tablePosition + kPositionSize * survey.tableEntries;
    if (end >= file.Size()) return;
    survey.strays.push_back(
        {end,
         file.Size(),
         {Say(file.Size() - end, " bytes behind the table"), "the end of the file"}});
}

}  // namespace corvantis::reading
