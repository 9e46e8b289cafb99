// Searching a file for epochs, in blocks, with a test on raw bytes before the exact one.
#include "EpochSearch.h"

#include <algorithm>
#include <span>
#include <vector>

#include "Container.h"

namespace corvantis {
namespace {

constexpr int64_t kSmallestBlock = 1 << 12;  // the next epoch is mostly near
constexpr int64_t kLargestBlock = 1 << 20;
constexpr int32_t kShortestInterval = 4;  // that the interface takes [µs]

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
std::optional<int64_t> SoundEnd(const DataFile& file, int64_t position) {
    const std::vector<uint8_t> bytes = file.Bytes(position, kEpochHeaderSize);
    if (static_cast<int64_t>(bytes.size()) < kEpochHeaderSize || !CanBeHeader(bytes)) {
        return std::nullopt;
    }
    const EpochReading reading = ReadEpochAt(file, position);
    if (reading.condition != Condition::kWhole) return std::nullopt;
    if (reading.content.header.samplingInterval < kShortestInterval) return std::nullopt;
    return reading.place.end;
}

bool IsEpoch(const DataFile& file, int64_t position) {
    const std::optional<int64_t> end = SoundEnd(file, position);
    if (!end) return false;
    const bool isLast = *end == file.Size() || *end == file.RecordedTablePosition();
    return isLast || SoundEnd(file, *end).has_value();
}

}  // namespace

std::optional<int64_t> FindEpoch(const DataFile& file, int64_t from, const Terminal& terminal) {
    Progress progress(terminal, "searching", file.Size());
    int64_t size = kSmallestBlock;
    for (int64_t begin = from; begin < file.Size(); begin += size) {
        progress.Reach(begin);
        size = std::min(2 * size, kLargestBlock);
        const std::vector<uint8_t> block = file.Bytes(begin, size + kEpochHeaderSize);
        const std::span<const uint8_t> bytes(block);
        for (size_t i = 0; i < static_cast<size_t>(size) && i + kEpochHeaderSize <= bytes.size();
             i += 2) {
            if (!CanBeHeader(bytes.subspan(i, kEpochHeaderSize))) continue;
            const int64_t position = begin + static_cast<int64_t>(i);
            if (IsEpoch(file, position)) return position;
        }
    }
    return std::nullopt;
}

}  // namespace corvantis
