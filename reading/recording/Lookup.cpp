// Finding epochs by number: by the table as long as it leads to them, else by the walk.
#include <algorithm>
#include <cstring>
#include <utility>

#include "ITCFileIO/RecordCodec.h"
#include "recording/Recording.h"

namespace corvantis::reading {
namespace {

constexpr int64_t kTablePiece = 512;  // values

// Of an epoch's header and its place. Reading it again must find the same.
uint32_t DigestOf(const EpochReading& reading) {
    constexpr uint64_t kOdd = 0x9E3779B97F4A7C15;
    uint64_t digest = static_cast<uint64_t>(reading.place.start);
    const auto mix = [&](uint64_t word) {
        digest = (digest ^ word) * kOdd;
        digest ^= digest >> 29;
    };
    mix(static_cast<uint64_t>(reading.place.samples));
    const auto* bytes = reinterpret_cast<const uint8_t*>(&reading.content.header);
    for (size_t i = 0; i < sizeof(ITCEpochHeader); i += sizeof(uint64_t)) {
        uint64_t word;
        std::memcpy(&word, bytes + i, sizeof word);
        mix(word);
    }
    return static_cast<uint32_t>(digest >> 32) | 1;
}
static_assert(sizeof(ITCEpochHeader) % sizeof(uint64_t) == 0);

}  // namespace

Contents::Contents(const ByteSource& source, std::string name, const Snapshot& snapshot)
    : source_(source), name_(std::move(name)), snapshot_(snapshot) {}

// The table's values come in pieces. A save overwrites the table from its first value on, so as
// long as that one stands, what was read before it is the table.
int64_t Contents::StartOf(const FileView& view, int64_t number) const {
    if (number == count_) return tablePosition_;
    if (const uint32_t known = starts_->Get(number); known != 0) return known;
    const int64_t first = number - number % kTablePiece;
    const int64_t count = std::min(kTablePiece, count_ - first);
    const auto piece = view.Positions(tablePosition_ + kPositionSize * first, count);
    const auto begin = view.Positions(tablePosition_, 1);
    if (begin.empty() || begin[0] != kFirstEpoch || piece.size() != size_t(count)) return 0;
    for (int64_t i = 0; i < count; ++i) starts_->Set(first + i, piece[static_cast<size_t>(i)]);
    return piece[static_cast<size_t>(number - first)];
}

// The epoch that the table leads to, if it ends where the table has the next one.
bool Contents::FindByTable(const FileView& view, int64_t number, Depth depth,
                           EpochReading& reading) const {
    const int64_t start = StartOf(view, number);
    const int64_t end = StartOf(view, number + 1);
    if (start < kFirstEpoch || end < start + kEpochHeaderSize || end > tablePosition_) return false;
    view.Expect(start, end - start);
    reading = ReadEpochAt(view, start, depth);
    reading.place.number = number;
    if (reading.condition <= Condition::kNoEntries) return reading.place.end == end;
    return EndsAt(reading, end);
}

bool Contents::IsAsBefore(int64_t index, const EpochReading& reading) const {
    const uint32_t digest = DigestOf(reading);
    const uint32_t before = digests_->Get(index);
    if (before == 0) digests_->Set(index, digest);
    return before == 0 || before == digest;
}

int32_t Contents::FindByWalking(const FileView& view, int64_t number, Depth depth,
                                EpochReading& reading, const Reporter& reporter) const {
    const Walked* walked = Walk(reporter);
    if (walked == nullptr) return CORVANTIS_FILE_ERROR;
    const EpochPlace* place = FindNumber(walked->survey, number);
    if (place == nullptr) {
        if (reporter.IsQuiet()) return CORVANTIS_DAMAGED;
        return reporter.ReportEpoch(CORVANTIS_DAMAGED, number, PlaceOf(walked->survey, number),
                                    WhyMissing(walked->survey, number));
    }
    view.Expect(place->start, place->end - place->start);
    reading = ReadEpochAt(view, place->start, depth);
    reading.place.number = number;
    if (reading.condition == Condition::kUnknownType) EndsAt(reading, place->end);
    const auto index = place - walked->survey.epochs.data();
    const bool isSame =
        reading.place.end == place->end && (isByTable_ || IsAsBefore(index, reading));
    if (view.Fault() != ReadFault::kNone) return reporter.ReportFault(view);
    if (isSame) return CORVANTIS_SUCCESS;
    return reporter.ReportEpoch(CORVANTIS_CHANGED, number, place->start,
                                "found another epoch than before: the file was changed");
}

int32_t Contents::Find(const FileView& view, int64_t number, Depth depth, EpochReading& reading,
                       const Reporter& reporter) const {
    if (number < 0 || number >= count_) {
        return reporter.ReportEpoch(
            CORVANTIS_BAD_ARGUMENT, number, -1,
            "the recording has " + std::to_string(count_) + " epochs, counted from 0");
    }
    if (const CorvantisPlace* place = KnownPlace(number)) {
        return FindByPlace(view, *place, depth, reading, reporter);
    }
    const bool isFound = isByTable_ && FindByTable(view, number, depth, reading);
    if (view.Fault() != ReadFault::kNone) return reporter.ReportFault(view);
    if (isFound) {
        if (IsAsBefore(number, reading)) return CORVANTIS_SUCCESS;
        return reporter.ReportEpoch(CORVANTIS_CHANGED, number, reading.place.start,
                                    "found another header than before: the file was changed");
    }
    return FindByWalking(view, number, depth, reading, reporter);
}

const Walked* Contents::Walk(const Reporter& reporter) const {
    if (const Walked* walked = isWalked_.load(std::memory_order_acquire)) return walked;
    const Lock lock(mutex_);
    if (walked_) return walked_.get();
    const FileView view = View();
    auto walked = std::make_unique<Walked>();
    walked->survey = SurveyFile(view);
    walked->findings = CompareWithSurvey(view, walked->survey);
    walked->numbers = NumbersOf(view, walked->survey);
    if (view.Fault() != ReadFault::kNone) {
        reporter.ReportFault(view);
        return nullptr;
    }
    if (!isByTable_) {
        digests_ = std::make_unique<Remembered>(static_cast<int64_t>(walked->survey.epochs.size()));
    }
    walked_ = std::move(walked);
    isWalked_.store(walked_.get(), std::memory_order_release);
    return walked_.get();
}

}  // namespace corvantis::reading
