// Following an epoch's header and stimulus records through the file.
#include "epochs/EpochLayout.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "ITCFileIO/Latency.h"
#include "ITCFileIO/RecordCodec.h"
#include "stimuli/Stimuli.h"
#include "text/Words.h"

namespace corvantis::reading {
namespace {

struct Stop {
    Condition condition;
    Mismatch mismatch;
};
using Stopped = std::optional<Stop>;

Stop Impossible(std::string found, std::string expected) {
    return {Condition::kImpossible, {std::move(found), std::move(expected)}};
}

Stop Cut(const FileView& file, int64_t start, std::string_view where) {
    const int64_t present = std::max<int64_t>(file.Size() - start, 0);
    return {Condition::kCut, {Say(present, " bytes, ending in ", where), "a whole epoch"}};
}

std::string AnyType() { return Say("a type from 1 to ", kLargestType); }

// Walks one epoch; the position is where its bytes go on.
class EpochWalk {
  public:
    EpochWalk(const FileView& file, EpochReading& reading, Depth depth)
        : file_(file), reading_(reading), depth_(depth), position_(reading.place.start) {}

    Stopped Follow() {
        if (Stopped stopped = ReadHeader()) return stopped;
        EpochPlace& place = reading_.place;
        for (int32_t entry = 0; entry < place.entries; ++entry) {
            Stopped stopped = ReadEntry(static_cast<size_t>(entry));
            if (stopped && stopped->condition == Condition::kUnknownType) AddUnread();
            if (stopped) return stopped;
        }
        if (place.entries == 0) reading_.condition = Condition::kNoEntries;
        place.samples = position_;
        place.end = position_ + int64_t{2} * place.points * place.entries;
        if (place.end > file_.Size()) return Cut(file_, place.start, "its samples");
        return std::nullopt;
    }

  private:
    Stopped ReadHeader() {
        const std::span<const uint8_t> bytes = file_.Peek(position_, kEpochHeaderSize);
        if (bytes.size() < kEpochHeaderSize) return Cut(file_, position_, "an epoch header");
        ITCEpochHeader& header = reading_.content.header;
        DecodeBytes(bytes.data(), header);
        RestoreLatency(header, file_.Header().version);
        if (header.epochPoints < 0) {
            return Impossible(Say("epochPoints ", header.epochPoints), "0 or more");
        }
        if (header.sequenceLength < 0 || header.sequenceLength > ITC_CHANNELS) {
            return Impossible(Say("sequenceLength ", header.sequenceLength), "1 to 4");
        }
        reading_.place.points = header.epochPoints;
        reading_.place.entries = header.sequenceLength;
        position_ += kEpochHeaderSize;
        return std::nullopt;
    }

    // So that there is a stimulus for each entry, even if nothing but its type is known.
    void AddUnread() {
        std::vector<Stimulus>& stimuli = reading_.content.stimuli;
        if (depth_ == Depth::kHeader) return;
        while (stimuli.size() < static_cast<size_t>(reading_.place.entries)) {
            Stimulus unread;
            unread.type = reading_.content.header.stimType[stimuli.size()];
            stimuli.push_back(unread);
        }
    }

    Stopped ReadEntry(size_t entry) {
        Stimulus stimulus;
        stimulus.type = reading_.content.header.stimType[entry];
        const bool isSum = stimulus.type == ITC_STIMULUS_SUMMED;
        Stopped stopped = isSum ? ReadSum(stimulus) : ReadRecord(stimulus, "stimType", entry);
        if (stopped) return stopped;
        if (stimulus.type == ITC_STIMULUS_DYNAMIC_CLAMP) {
            stimulus.conductances = position_;
            position_ += int64_t{2} * static_cast<int64_t>(sizeof(float)) * reading_.place.points;
        }
        stimulus.isRead = true;
        if (depth_ == Depth::kRecords) reading_.content.stimuli.push_back(std::move(stimulus));
        return std::nullopt;
    }

    // The bytes of a record, or nothing where the file ends before.
    const uint8_t* Take(int64_t size) {
        const std::span<const uint8_t> bytes = file_.Peek(position_, size);
        if (static_cast<int64_t>(bytes.size()) < size) return nullptr;
        position_ += size;
        return bytes.data();
    }

    Stopped ReadSum(Stimulus& stimulus) {
        const uint8_t* bytes = Take(kSummedCountedSize);
        if (bytes == nullptr) return Cut(file_, reading_.place.start, "a sum");
        ITCSummedParameters summed = {};
        DecodeBytes(bytes, summed);
        if (summed.count > ITC_COMPONENTS) {
            return Impossible(Say(summed.count, " components"), "256 or fewer");
        }
        for (int32_t k = 0; k < summed.count; ++k) {
            Stimulus component;
            component.type = summed.componentType[k];
            if (Stopped stopped = ReadRecord(component, "componentType", static_cast<size_t>(k))) {
                return stopped;
            }
            component.isRead = true;
            if (depth_ == Depth::kRecords) stimulus.components.push_back(std::move(component));
        }
        return std::nullopt;
    }

    static Stop WrongType(std::string_view field, size_t index, int32_t type) {
        const std::string place = Say(field, "[", index, "] ", type);
        if (type <= static_cast<int32_t>(kLargestType)) return Impossible(place, AnyType());
        return {Condition::kUnknownType,
                {Say(place, ": stimulus type ", type, " is not known"), AnyType()}};
    }

    Stopped ReadRecord(Stimulus& stimulus, std::string_view field, size_t index) {
        if (!IsSimpleType(stimulus.type)) return WrongType(field, index, stimulus.type);
        const RecordForm& form = RowOf(stimulus.type).record.Get();
        reading_.place.overcounted += form.countedSize - form.fileSize;
        if (form.fileSize == 0) return std::nullopt;
        const uint8_t* bytes = Take(form.fileSize);
        if (bytes == nullptr) return Cut(file_, reading_.place.start, "a stimulus record");
        if (depth_ == Depth::kRecords) form.decode(bytes, stimulus.record.data());
        return std::nullopt;
    }

    const FileView& file_;
    EpochReading& reading_;
    Depth depth_;
    int64_t position_;
};

}  // namespace

EpochReading ReadEpochAt(const FileView& file, int64_t start, Depth depth) {
    EpochReading reading;
    reading.place.start = start;
    if (Stopped stopped = EpochWalk(file, reading, depth).Follow()) {
        reading.condition = stopped->condition;
        reading.mismatch = std::move(stopped->mismatch);
    } else if (reading.condition == Condition::kNoEntries) {
        reading.mismatch = {"sequenceLength 0", "1 to 4"};
    }
    return reading;
}

bool EndsAt(EpochReading& reading, int64_t end) {
    EpochPlace& place = reading.place;
    const int64_t samples = end - int64_t{2} * place.points * place.entries;
    if (reading.condition != Condition::kUnknownType) return false;
    if (samples < place.start + kEpochHeaderSize) return false;
    place.samples = samples;
    place.end = end;
    return true;
}

}  // namespace corvantis::reading
