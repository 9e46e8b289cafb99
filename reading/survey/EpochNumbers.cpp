// What a survey says of an epoch by its number.
#include <algorithm>
#include <limits>

#include "survey/Survey.h"
#include "text/Words.h"

namespace corvantis::reading {
namespace {

auto FirstFrom(const Survey& survey, int64_t number) {
    return std::lower_bound(
        survey.epochs.begin(), survey.epochs.end(), number,
        [](const EpochPlace& epoch, int64_t wanted) { return epoch.number < wanted; });
}

// The stretch that begins with the damaged epoch of that number, or with one before it behind which
// no epoch is there.
const Stretch* FindStray(const Survey& survey, int64_t number) {
    const auto behind = std::upper_bound(
        survey.damaged.begin(), survey.damaged.end(), number,
        [&](int64_t wanted, size_t stray) { return wanted < *survey.strays[stray].number; });
    if (behind == survey.damaged.begin()) return nullptr;
    const Stretch& stray = survey.strays[*(behind - 1)];
    const auto next = FirstFrom(survey, *stray.number);
    const bool reaches =
        next == survey.epochs.end() ? number < survey.numbers : next->number > number;
    return reaches ? &stray : nullptr;
}

}  // namespace

const EpochPlace* FindNumber(const Survey& survey, int64_t number) {
    const auto found = FirstFrom(survey, number);
    return found == survey.epochs.end() || found->number != number ? nullptr : &*found;
}

int64_t NextNumber(const Survey& survey, int64_t number) {
    const auto next = FirstFrom(survey, number);
    return next == survey.epochs.end() ? std::numeric_limits<int64_t>::max() : next->number;
}

int64_t PlaceOf(const Survey& survey, int64_t number) {
    if (const Stretch* stray = FindStray(survey, number)) return stray->begin;
    const bool isUnfinished = survey.unfinished && number == survey.numbers;
    return isUnfinished ? survey.unfinished->place.start : -1;
}

std::string WhyMissing(const Survey& survey, int64_t number) {
    if (const Stretch* stray = FindStray(survey, number)) {
        return Say("found ", stray->mismatch.found, ", expected ", stray->mismatch.expected);
    }
    if (survey.unfinished && number == survey.numbers) {
        const UnfinishedEpoch& last = *survey.unfinished;
        return Say("found ", last.mismatch.found, " (", last.wholePoints, " of ", last.place.points,
                   " points), expected ", last.mismatch.expected);
    }
    if (number >= survey.numbers) return "the file ends before it";
    return "the table of positions leads to no epoch of its own, as after a save that failed";
}

int64_t NumbersOf(const FileView& file, const Survey& survey) {
    const int64_t known = survey.numbers + (survey.unfinished ? 1 : 0);
    const int64_t counted = file.Header().numEpochs;
    const bool isTruncated = file.RecordedTablePosition() > file.Size();
    const int64_t most = (file.RecordedTablePosition() - kFirstEpoch) / kEpochHeaderSize;
    if (!isTruncated || counted > most) return known;
    return std::max(counted, known);
}

}  // namespace corvantis::reading
