// Searching a file for epochs, in blocks, with a test on raw bytes before the exact one.
#include "survey/EpochSearch.h"

#include <algorithm>
#include <span>
#include <vector>

#include "epochs/EpochLayout.h"

namespace corvantis::reading {
namespace {

constexpr int64_t kSmallestBlock = 1 << 12;  // the next epoch is mostly near
constexpr int64_t kLargestBlock = 1 << 20;

bool IsZero(std::span<const uint8_t> header, size_t offset, size_t size) {
    const auto bytes = header.subspan(offset, size);
    return std::all_of(bytes.begin(), bytes.end(), [](uint8_t byte) { return byte == 0; });
}

// The record lies in memory as it lies in the file. The number of entries comes first: it tells a
// header from a lost block of zeros.
bool CanBeHeader(std::span<const uint8_t> header) {
    const uint8_t entries = header[offsetof(ITCEpochHeader, sequenceLength) + 3];
    return entries >= 1 && entries <= ITC_CHANNELS &&
           IsZero(header, offsetof(ITCEpochHeader, padding0), sizeof(ITCEpochHeader::padding0)) &&
           IsZero(header, offsetof(ITCEpochHeader, padding1), sizeof(ITCEpochHeader::padding1)) &&
           IsZero(header, offsetof(ITCEpochHeader, reserved), sizeof(ITCEpochHeader::reserved)) &&
           IsZero(header, offsetof(ITCEpochHeader, sequenceLength), 3);
}

// Where the epoch ends, if there is a sound one.
std::optional<int64_t> SoundEnd(const FileView& file, int64_t position) {
    const std::vector<uint8_t> bytes = file.Bytes(position, kEpochHeaderSize);
    if (static_cast<int64_t>(bytes.size()) < kEpochHeaderSize || !CanBeHeader(bytes)) {
        return std::nullopt;
    }
    const EpochReading reading = ReadEpochAt(file, position);
    if (reading.condition != Condition::kWhole) return std::nullopt;
    if (reading.content.header.samplingInterval < 1) return std::nullopt;
    return reading.place.end;
}

bool IsEpoch(const FileView& file, int64_t position) {
    const std::optional<int64_t> end = SoundEnd(file, position);
    if (!end) return false;
    const bool isLast = *end == file.Size() || *end == file.RecordedTablePosition();
    return isLast || SoundEnd(file, *end).has_value();
}

// A header has bytes that are not zero, so none begins where a hole holds all of it.
int64_t BehindHole(const FileView& file, int64_t position) {
    return std::max(position, (file.NextData(position) - kEpochHeaderSize) & ~int64_t{1});
}

std::optional<size_t> FindHeader(std::span<const uint8_t> bytes, size_t from) {
    for (; from + kEpochHeaderSize <= bytes.size(); from += 2) {
        if (CanBeHeader(bytes.subspan(from, kEpochHeaderSize))) return from;
    }
    return std::nullopt;
}

}  // namespace

std::optional<int64_t> FindEpoch(const FileView& file, int64_t from, int64_t until) {
    int64_t size = kSmallestBlock;
    for (int64_t begin = BehindHole(file, from); begin < std::min(until, file.Size());
         begin = BehindHole(file, begin + size)) {
        size = std::min(2 * size, kLargestBlock);
        // Headers that begin in this block, up to its last byte but one.
        const std::vector<uint8_t> block = file.Bytes(begin, size + kEpochHeaderSize - 2);
        for (auto at = FindHeader(block, 0); at; at = FindHeader(block, *at + 2)) {
            const int64_t position = begin + static_cast<int64_t>(*at);
            if (position < until && IsEpoch(file, position)) return position;
        }
    }
    return std::nullopt;
}

int64_t EndOfSoundEpochs(const FileView& file, int64_t position, int64_t until) {
    while (position < until && IsEpoch(file, position)) position = *SoundEnd(file, position);
    return position;
}

}  // namespace corvantis::reading
