// Telling whether the epoch of an interrupted save has reached the file as a whole.
#include "survey/LastSave.h"

#include <algorithm>
#include <utility>

namespace corvantis::reading {
namespace {

// Whether all bytes from there on have been written after whatever was there before: behind the
// place of the old table, only those of a file that is longer than it was.
bool IsNewFrom(const FileView& file, int64_t position) {
    const int64_t counted = file.Header().numEpochs;
    if (counted <= 0 || position != file.RecordedTablePosition()) return true;
    return file.Size() > position + kPositionSize * counted;
}

// The beginning of a table, or of its beginning where the file ends.
bool TableBegins(const FileView& file, int64_t position) {
    const std::vector<uint8_t> begin = {0, 0, kFirstEpoch >> 8, kFirstEpoch & 0xFF};
    const std::vector<uint8_t> found = file.Bytes(position, kPositionSize);
    return std::equal(found.begin(), found.end(), begin.begin());
}

int32_t WholePoints(const EpochPlace& epoch, int64_t knownEnd) {
    const int64_t pointSize = int64_t{2} * epoch.entries;
    if (epoch.samples == 0) return 0;
    const int64_t points = (std::min(knownEnd, epoch.end) - epoch.samples) / pointSize;
    return static_cast<int32_t>(std::clamp<int64_t>(points, 0, epoch.points));
}

}  // namespace

bool IsCompleteSave(const FileView& file, const EpochReading& reading) {
    return reading.condition == Condition::kWhole && IsNewFrom(file, reading.place.start) &&
           TableBegins(file, reading.place.end);
}

void SetAsideRest(const FileView& file, EpochReading reading, Survey& survey) {
    const int64_t position = reading.place.start;
    if (reading.condition == Condition::kWhole) {
        reading.mismatch = {"samples of which a part may be left over from earlier",
                            "a table behind them"};
    }
    const bool isEpoch =
        reading.condition == Condition::kWhole || reading.condition == Condition::kCut;
    if (isEpoch && file.Size() - position >= kEpochHeaderSize) {
        const int64_t knownEnd = IsNewFrom(file, position) ? file.Size() : position;
        survey.unfinished = {reading.place, WholePoints(reading.place, knownEnd),
                             std::move(reading.mismatch)};
    } else if (position < file.Size()) {
        survey.strays.push_back({position, file.Size(), std::move(reading.mismatch)});
    }
}

}  // namespace corvantis::reading
