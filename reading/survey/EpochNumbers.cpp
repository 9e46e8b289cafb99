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

const Stretch* FindStray(const Survey& survey, int64_t number) {
    const auto found = std::lower_bound(
        survey.damaged.begin(), survey.damaged.end(), number,
        [&](size_t stray, int64_t wanted) { return *survey.strays[stray].number < wanted; });
    if (found == survey.damaged.end() || survey.strays[*found].number != number) return nullptr;
    return &survey.strays[*found];
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
