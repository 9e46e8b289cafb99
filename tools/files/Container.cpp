// Following an epoch's header and stimulus records through the file, with the library's codecs.
#include "files/Container.h"

#include <fmt/core.h>

#include <algorithm>
#include <optional>
#include <utility>

#include "stimuli/Stimuli.h"

namespace corvantis::tool {
namespace {

struct Stop {
    Condition condition;
    Mismatch mismatch;
};
using Stopped = std::optional<Stop>;

Stop Impossible(std::string found, std::string expected) {
    return {Condition::kImpossible, {std::move(found), std::move(expected)}};
}

Stop Cut(const DataFile& file, int64_t start, const std::string& where) {
    const int64_t present = std::max<int64_t>(file.Size() - start, 0);
    return {Condition::kCut,
            {fmt::format("{} bytes, ending in {}", present, where), "a whole epoch"}};
}

// Walks one epoch; the position is where its bytes go on.
class EpochWalk {
  public:
    EpochWalk(const DataFile& file, EpochReading& reading)
        : file_(file), reading_(reading), position_(reading.place.start) {}

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
        ITCEpochHeader& header = reading_.content.header;
        const int32_t version = file_.Header().version;
        if (file_.Size() - position_ < kEpochHeaderSize ||
            !Read_ITCEpochHeader(file_.At(position_), &header, version)) {
            return Cut(file_, position_, "an epoch header");
        }
        if (header.epochPoints < 0) {
            return Impossible(fmt::format("epochPoints {}", header.epochPoints), "0 or more");
        }
        if (header.sequenceLength < 0 || header.sequenceLength > ITC_CHANNELS) {
            return Impossible(fmt::format("sequenceLength {}", header.sequenceLength), "1 to 4");
        }
        reading_.place.points = header.epochPoints;
        reading_.place.entries = header.sequenceLength;
        position_ += kEpochHeaderSize;
        return std::nullopt;
    }

    // So that there is a stimulus for each entry, even if nothing but its type is known.
    void AddUnread() {
        std::vector<Stimulus>& stimuli = reading_.content.stimuli;
        while (stimuli.size() < static_cast<size_t>(reading_.place.entries)) {
            Stimulus unread;
            unread.type = reading_.content.header.stimType[stimuli.size()];
            stimuli.push_back(unread);
        }
    }

    Stopped ReadEntry(size_t entry) {
        Stimulus stimulus;
        stimulus.type = reading_.content.header.stimType[entry];
        const std::string name = fmt::format("stimType[{}]", entry);
        const bool isSum = stimulus.type == ITC_STIMULUS_SUMMED;
        Stopped stopped = isSum ? ReadSum(stimulus) : ReadRecord(stimulus, name);
        if (stopped) return stopped;
        if (stimulus.type == ITC_STIMULUS_DYNAMIC_CLAMP) {
            reading_.place.conductances[entry] = position_;
            position_ += int64_t{2} * static_cast<int64_t>(sizeof(float)) * reading_.place.points;
        }
        stimulus.isRead = true;
        reading_.content.stimuli.push_back(std::move(stimulus));
        return std::nullopt;
    }

    Stopped ReadSum(Stimulus& stimulus) {
        ITCSummedParameters summed = {};
        FILE* stream = file_.At(position_);
        if (!Read_ITCSummedParameters(stream, &summed)) {
            return Cut(file_, reading_.place.start, "a sum");
        }
        position_ = ftello(stream);
        if (summed.count > ITC_COMPONENTS) {
            return Impossible(fmt::format("{} components", summed.count), "256 or fewer");
        }
        for (int32_t k = 0; k < summed.count; ++k) {
            Stimulus component;
            component.type = summed.componentType[k];
            const std::string name = fmt::format("componentType[{}]", k);
            if (Stopped stopped = ReadRecord(component, name)) return stopped;
            component.isRead = true;
            stimulus.components.push_back(component);
        }
        return std::nullopt;
    }

    Stopped ReadRecord(Stimulus& stimulus, const std::string& name) {
        const int32_t type = stimulus.type;
        if (type > static_cast<int32_t>(kLargestType)) {
            return Stop{Condition::kUnknownType,
                        {fmt::format("{} {}: stimulus type {} is not known", name, type, type),
                         fmt::format("a type from 1 to {}", kLargestType)}};
        }
        if (!IsSimpleType(type)) {
            return Impossible(fmt::format("{} {}", name, type),
                              fmt::format("a type from 1 to {}", kLargestType));
        }
        FILE* stream = file_.At(position_);
        if (!Read_ITCStimulusParameters(stream, stimulus.record.data(),
                                        static_cast<uint32_t>(type))) {
            return Cut(file_, reading_.place.start, "a stimulus record");
        }
        const int64_t next = ftello(stream);
        reading_.place.overcounted += RowOf(type).record->countedSize - (next - position_);
        position_ = next;
        return std::nullopt;
    }

    const DataFile& file_;
    EpochReading& reading_;
    int64_t position_;
};

}  // namespace

EpochReading ReadEpochAt(const DataFile& file, int64_t start) {
    EpochReading reading;
    reading.place.start = start;
    if (Stopped stopped = EpochWalk(file, reading).Follow()) {
        reading.condition = stopped->condition;
        reading.mismatch = stopped->mismatch;
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

}  // namespace corvantis::tool
