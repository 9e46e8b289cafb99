// Opening by what is known from before: compared with what is read, and believed no further.
#include <algorithm>

#include "recording/Recording.h"

namespace corvantis::reading {
namespace {

// Within the file, of epochs that it has, by ascending numbers.
bool CanBe(const Known& known) {
    int64_t next = 0;
    for (const CorvantisPlace& place : known.places) {
        if (place.epoch < next || place.epoch >= known.info.epochs) return false;
        if (place.start < kFirstEpoch || place.end < kFirstEpoch) return false;
        if (place.end > known.info.size) return false;
        if (place.end - place.start < kEpochHeaderSize) return false;
        next = place.epoch + 1;
    }
    return true;
}

}  // namespace

std::unique_ptr<Contents> Contents::Recall(const ByteSource& source, const std::string& name,
                                           const Snapshot& snapshot, const Known& known,
                                           const Reporter& reporter) {
    if (!CanBe(known)) {
        reporter.Report(CORVANTIS_BAD_ARGUMENT, -1, "what is known of its epochs cannot be");
        return nullptr;
    }
    std::unique_ptr<Contents> contents(new Contents(source, name, snapshot));
    const bool byTable = known.info.found == CORVANTIS_BY_TABLE;
    bool isSame = snapshot.size == known.info.size &&
                  DigestOf(snapshot.header) == known.info.digest && snapshot.size >= kFirstEpoch &&
                  snapshot.header.version <= ITC_FILE_VERSION;
    if (byTable) isSame = isSame && contents->TakeTable(contents->View());
    if (!isSame || (byTable && contents->count_ != known.info.epochs)) {
        reporter.Report(CORVANTIS_CHANGED, -1, "found another file than before: it was changed");
        return nullptr;
    }
    contents->isByTable_ = byTable;
    contents->count_ = known.info.epochs;
    if (!byTable) contents->tablePosition_ = known.info.tablePosition;
    contents->places_.assign(known.places.begin(), known.places.end());
    return contents;
}

const CorvantisPlace* Contents::KnownPlace(int64_t number) const {
    const auto isBefore = [](const CorvantisPlace& place, int64_t wanted) {
        return place.epoch < wanted;
    };
    const auto found = std::lower_bound(places_.begin(), places_.end(), number, isBefore);
    return found == places_.end() || found->epoch != number ? nullptr : &*found;
}

int32_t Contents::FindByPlace(const FileView& view, const CorvantisPlace& place, Depth depth,
                              EpochReading& reading, const Reporter& reporter) {
    view.Expect(place.start, place.end - place.start);
    reading = ReadEpochAt(view, place.start, depth);
    reading.place.number = place.epoch;
    if (reading.condition == Condition::kUnknownType) EndsAt(reading, place.end);
    if (view.Fault() != ReadFault::kNone) return reporter.ReportFault(view);
    if (reading.place.end == place.end && DigestOf(reading.content.header) == place.digest) {
        return CORVANTIS_SUCCESS;
    }
    return reporter.ReportEpoch(CORVANTIS_CHANGED, place.epoch, place.start,
                                "found another epoch than before: the file was changed");
}

}  // namespace corvantis::reading
