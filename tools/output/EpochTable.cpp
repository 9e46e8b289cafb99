// The columns of an epoch's table, each reading its own points.
#include "output/EpochTable.h"

#include <fmt/core.h>

#include <limits>
#include <utility>

#include "files/Failure.h"
#include "output/Units.h"
#include "stimuli/Rebuild.h"
#include "stimuli/Stimuli.h"

namespace corvantis::tool {
namespace {

constexpr double kMicrosecondsPerSecond = 1e6;

class TimeColumn : public Column {
  public:
    explicit TimeColumn(int32_t interval) : interval_(interval) { name = "time_s"; }
    // Exact in microseconds, so that each time is the nearest number to the true one.
    void Read(int64_t firstPoint, std::span<double> values) override {
        for (double& value : values) {
            value = static_cast<double>(firstPoint++ * interval_) / kMicrosecondsPerSecond;
        }
    }

  private:
    int64_t interval_;
};

class SampleColumn : public Column {
  public:
    SampleColumn(const DataFile& file, const EpochPlace& place, size_t entry, Conversion conversion)
        : file_(file), place_(place), entry_(entry), conversion_(std::move(conversion)) {
        name = fmt::format("response{}_{}", entry, conversion_.unit);
    }
    void Read(int64_t firstPoint, std::span<double> values) override {
        const auto entries = static_cast<size_t>(place_.entries);
        samples_.resize(values.size() * entries);
        FILE* stream = file_.At(place_.samples + int64_t{2} * firstPoint * place_.entries);
        if (!ReadArray_short(stream, samples_.data(), static_cast<int>(samples_.size()))) {
            throw Failure(file_.Path(), "its samples cannot be read");
        }
        for (size_t i = 0; i < values.size(); ++i) {
            values[i] = conversion_(samples_[i * entries + entry_]);
        }
    }

  private:
    const DataFile& file_;
    EpochPlace place_;
    size_t entry_;
    Conversion conversion_;
    std::vector<int16_t> samples_;
};

class StimulusColumn : public Column {
  public:
    StimulusColumn(std::vector<int16_t> samples, size_t entry, Conversion conversion)
        : samples_(std::move(samples)), conversion_(std::move(conversion)) {
        name = fmt::format("stimulus{}_{}", entry, conversion_.unit);
    }
    void Read(int64_t firstPoint, std::span<double> values) override {
        for (size_t i = 0; i < values.size(); ++i) {
            const size_t point = static_cast<size_t>(firstPoint) + i;
            values[i] = point < samples_.size() ? conversion_(samples_[point])
                                                : std::numeric_limits<double>::quiet_NaN();
        }
    }

  private:
    std::vector<int16_t> samples_;
    Conversion conversion_;
};

class ConductanceColumn : public Column {
  public:
    ConductanceColumn(const DataFile& file, int64_t position, std::string title)
        : file_(file), position_(position) {
        name = std::move(title);
    }
    void Read(int64_t firstPoint, std::span<double> values) override {
        conductances_.resize(values.size());
        FILE* stream = file_.At(position_ + int64_t{4} * firstPoint);
        if (!ReadArray_float(stream, conductances_.data(), static_cast<int>(values.size()))) {
            throw Failure(file_.Path(), "its conductances cannot be read");
        }
        std::copy(conductances_.begin(), conductances_.end(), values.begin());
    }

  private:
    const DataFile& file_;
    int64_t position_;
    std::vector<float> conductances_;
};

class TableBuilder {
  public:
    TableBuilder(const DataFile& file, const EpochPlace& place, Values values, EpochTable& table)
        : file_(file),
          place_(place),
          content_(ReadEpochAt(file, place.start).content),
          values_(values),
          table_(table) {}

    void AddResponses() {
        table_.points = place_.points;
        Add<TimeColumn>(content_.header.samplingInterval);
        for (size_t entry = 0; entry < Entries(); ++entry) {
            Add<SampleColumn>(file_, place_, entry, ResponseConversion(entry));
        }
    }

    void AddStimuli() {
        RebuiltStimulus rebuilt = RebuildStimulus(file_, place_, content_).front();
        for (size_t entry = 0; entry < Entries(); ++entry) {
            if (place_.conductances[entry] != 0) {
                AddConductances(entry);
                continue;
            }
            Remark(entry, rebuilt.entries[entry].empty());
            Add<StimulusColumn>(std::move(rebuilt.entries[entry]), entry,
                                StimulusConversion(entry));
        }
    }

  private:
    size_t Entries() const { return content_.stimuli.size(); }

    template <class Kind, class... Arguments>
    void Add(Arguments&&... arguments) {
        table_.columns.push_back(std::make_unique<Kind>(std::forward<Arguments>(arguments)...));
    }

    Conversion ResponseConversion(size_t entry) const {
        if (values_ == Values::kCounts) return {.unit = "counts"};
        if (values_ == Values::kVolts)
            return ResponseInVolts(file_.Header(), content_.header, entry);
        return ResponseInUnits(file_.Header(), content_.header, entry);
    }

    Conversion StimulusConversion(size_t entry) const {
        if (values_ == Values::kCounts) return {.unit = "counts"};
        if (values_ == Values::kVolts)
            return StimulusInVolts(file_.Header(), content_.header, entry);
        return StimulusInUnits(file_.Header(), content_.header, entry);
    }

    // Its computed output is zero throughout, which nobody wants to see.
    void AddConductances(size_t entry) {
        const int64_t arrays = place_.conductances[entry];
        Add<ConductanceColumn>(file_, arrays, fmt::format("excitatory{}_nS", entry));
        Add<ConductanceColumn>(file_, arrays + int64_t{4} * place_.points,
                               fmt::format("inhibitory{}_nS", entry));
    }

    void Remark(size_t entry, bool isEmpty) {
        const Stimulus& stimulus = content_.stimuli[entry];
        std::string why = WhyNotRebuilt(file_.Header(), stimulus);
        const bool fits = !isEmpty && FillsEpoch(stimulus, place_.points);
        if (why.empty() && !fits && place_.points > 0) why = "its lengths do not fit the epoch";
        if (why.empty()) return;
        table_.remarks.push_back(fmt::format("entry {}: {} {} stimulus: {}", entry,
                                             isEmpty ? "no" : "doubtful", TypeName(stimulus.type),
                                             why));
    }

    const DataFile& file_;
    EpochPlace place_;
    EpochContent content_;
    Values values_;
    EpochTable& table_;
};

}  // namespace

EpochTable MakeEpochTable(const DataFile& file, const EpochPlace& place, Values values) {
    EpochTable table;
    TableBuilder(file, place, values, table).AddResponses();
    return table;
}

void AddStimulus(const DataFile& file, const EpochPlace& place, Values values, EpochTable& table) {
    TableBuilder(file, place, values, table).AddStimuli();
}

}  // namespace corvantis::tool
