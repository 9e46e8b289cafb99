// The columns of an epoch's table, each reading its own points.
#include "output/EpochTable.h"

#include <fmt/core.h>

#include <algorithm>
#include <limits>
#include <string_view>
#include <utility>

#include "files/Failure.h"
#include "units/Scale.h"

namespace corvantis::tool {
namespace {

using reading::Scale;

constexpr double kMicrosecondsPerSecond = 1e6;

// Volts are what is left without the entry's own gain or factor.
Scale ScaleFor(const DataFile& file, const EpochRecords& epoch, int32_t entry, int32_t direction,
               Values values) {
    if (values == Values::kCounts) return {.unit = "counts", .formula = {}};
    const CorvantisScaleInfo info = ScaleOf(file, epoch.number, entry, direction);
    Scale scale = {info.unit, info.formula, info.countsPerVolt,
                   info.gain, info.factor,  info.isWord == 1};
    const bool hasVolts = info.isWord == 0 && scale.unit != "counts";
    if (values == Values::kVolts && hasVolts) {
        scale.gain = scale.factor = 1;
        scale.unit = std::string(1, 'V');
    }
    return scale;
}

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
    SampleColumn(const DataFile& file, int64_t epoch, int32_t entry, Scale scale)
        : file_(file), epoch_(epoch), entry_(entry), scale_(std::move(scale)) {
        name = fmt::format("response{}_{}", entry, scale_.unit);
    }
    void Read(int64_t firstPoint, std::span<double> values) override {
        counts_.resize(values.size());
        CorvantisProblem problem = {};
        Require(CorvantisCounts(file_.Recording(), epoch_, entry_, firstPoint,
                                static_cast<int64_t>(values.size()), counts_.data(), 0, &problem),
                problem);
        reading::Convert(scale_, counts_, values.data(), 1);
    }

  private:
    const DataFile& file_;
    int64_t epoch_;
    int32_t entry_;
    Scale scale_;
    std::vector<int16_t> counts_;
};

// Computed when it is first read, and then kept: noise has to be computed from its first point on.
class StimulusColumn : public Column {
  public:
    StimulusColumn(const DataFile& file, const EpochRecords& epoch, int32_t entry, Scale scale)
        : file_(file),
          epoch_(epoch.number),
          points_(epoch.info.points),
          entry_(entry),
          scale_(std::move(scale)) {
        name = fmt::format("stimulus{}_{}", entry, scale_.unit);
    }
    void Read(int64_t firstPoint, std::span<double> values) override {
        if (firstPoint == 0) Compute();
        if (samples_.empty()) {
            std::fill(values.begin(), values.end(), std::numeric_limits<double>::quiet_NaN());
            return;
        }
        const std::span all(samples_);
        reading::Convert(scale_, all.subspan(static_cast<size_t>(firstPoint), values.size()),
                         values.data(), 1);
    }

  private:
    void Compute() {
        samples_.resize(static_cast<size_t>(points_));
        CorvantisProblem problem = {};
        const int32_t result = CorvantisStimulus(file_.Recording(), epoch_, entry_, 0, points_,
                                                 samples_.data(), 0, nullptr, &problem);
        if (result == CORVANTIS_NO_STIMULUS) {
            samples_.clear();
        } else {
            Require(result, problem);
        }
    }

    const DataFile& file_;
    int64_t epoch_;
    int64_t points_;
    int32_t entry_;
    Scale scale_;
    std::vector<int16_t> samples_;
};

class ConductanceColumn : public Column {
  public:
    ConductanceColumn(const DataFile& file, int64_t epoch, int32_t entry, int32_t which)
        : file_(file), epoch_(epoch), entry_(entry), which_(which) {
        name = fmt::format("{}{}_nS", which == CORVANTIS_EXCITATORY ? "excitatory" : "inhibitory",
                           entry);
    }
    void Read(int64_t firstPoint, std::span<double> values) override {
        conductances_.resize(values.size());
        CorvantisProblem problem = {};
        Require(CorvantisConductance(file_.Recording(), epoch_, entry_, which_, firstPoint,
                                     static_cast<int64_t>(values.size()), conductances_.data(),
                                     &problem),
                problem);
        std::copy(conductances_.begin(), conductances_.end(), values.begin());
    }

  private:
    const DataFile& file_;
    int64_t epoch_;
    int32_t entry_;
    int32_t which_;
    std::vector<float> conductances_;
};

// Not behind a record of unknown length.
bool HasConductances(const DataFile& file, const EpochRecords& epoch, int32_t entry) {
    return epoch.info.stimulusTypes[entry] == ITC_STIMULUS_DYNAMIC_CLAMP &&
           ParametersOf(file, epoch.number, entry).isThere == 1;
}

void Remark(const DataFile& file, const EpochRecords& epoch, int32_t entry, EpochTable& table) {
    const StimulusState state = StimulusStateOf(file, epoch.number, entry);
    const std::string name = TypeName(epoch.info.stimulusTypes[entry]);
    const auto remark = [&](std::string_view kind, std::string_view why) {
        table.remarks.push_back(
            fmt::format("entry {}: {} {} stimulus: {}", entry, kind, name, why));
    };
    if (!state.problem.empty()) {
        remark("no", state.problem);
    } else if (!state.fillsEpoch) {
        remark("doubtful", "its lengths do not fill the epoch");
    }
    if (state.doubt.reason != CORVANTIS_NO_DOUBT) remark("doubtful", state.doubt.text);
}

}  // namespace

EpochTable MakeEpochTable(const DataFile& file, const EpochRecords& epoch, Values values) {
    EpochTable table;
    table.points = epoch.info.points;
    table.columns.push_back(std::make_unique<TimeColumn>(epoch.info.samplingInterval));
    for (int32_t entry = 0; entry < epoch.info.entries; ++entry) {
        table.columns.push_back(std::make_unique<SampleColumn>(
            file, epoch.number, entry, ScaleFor(file, epoch, entry, CORVANTIS_RESPONSE, values)));
    }
    return table;
}

// The computed output of a dynamic clamp is zero throughout, which nobody wants to see.
void AddStimulus(const DataFile& file, const EpochRecords& epoch, Values values,
                 EpochTable& table) {
    for (int32_t entry = 0; entry < epoch.info.entries; ++entry) {
        if (HasConductances(file, epoch, entry)) {
            for (const int32_t which : {CORVANTIS_EXCITATORY, CORVANTIS_INHIBITORY}) {
                table.columns.push_back(
                    std::make_unique<ConductanceColumn>(file, epoch.number, entry, which));
            }
            continue;
        }
        Remark(file, epoch, entry, table);
        table.columns.push_back(std::make_unique<StimulusColumn>(
            file, epoch, entry, ScaleFor(file, epoch, entry, CORVANTIS_STIMULUS, values)));
    }
}

}  // namespace corvantis::tool
