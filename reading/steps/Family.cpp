// Mixing all that epochs of a family have in common into one number.
#include "steps/Family.h"

#include <bit>
#include <cstddef>

#include "stimuli/Stimuli.h"

namespace corvantis::reading {
namespace {

enum class Of : uint64_t { kSteps = 1, kRecord = 2 };

class Mixture {
  public:
    Mixture(Of kind, const Setting& setting) {
        Add(static_cast<uint64_t>(kind));
        Add(setting.interval);
        Add(setting.responseUnit);
        Add(setting.stimulusUnit);
    }

    void Add(uint64_t word) {
        constexpr uint64_t kOdd = 0x9E3779B97F4A7C15;
        digest_ = (digest_ ^ word) * kOdd;
        digest_ ^= digest_ >> 29;
    }
    void Add(int64_t number) { Add(static_cast<uint64_t>(number)); }
    void Add(int32_t number) { Add(int64_t{number}); }
    void Add(double value) { Add(std::bit_cast<uint64_t>(value + 0.0)); }  // one zero, not two
    void Add(std::string_view text) {
        Add(static_cast<uint64_t>(text.size()));
        for (const char letter : text) Add(static_cast<uint64_t>(static_cast<uint8_t>(letter)));
    }

    int64_t Get() const {
        const auto number = static_cast<int64_t>(digest_ >> 11);
        return number == 0 ? 1 : number;
    }

  private:
    uint64_t digest_ = 0;
};

void AddField(Mixture& mixture, const Field& field, std::span<const std::byte> record) {
    for (const std::byte byte : record.subspan(field.place, size_t{field.size} * field.count)) {
        mixture.Add(std::to_integer<uint64_t>(byte));
    }
}

void AddRecord(Mixture& mixture, const Stimulus& stimulus) {
    mixture.Add(stimulus.type);
    mixture.Add(static_cast<int64_t>(stimulus.components.size()));
    for (const Stimulus& component : stimulus.components) AddRecord(mixture, component);
    if (stimulus.type == ITC_STIMULUS_SUMMED) return;
    for (const Field& field : RowOf(stimulus.type).record->fields) {
        if (std::string_view(field.text.name) != "amplitude")
            AddField(mixture, field, stimulus.record);
    }
}

}  // namespace

int64_t FamilyOfSteps(std::span<const StepPoints> steps, std::span<const double> levels,
                      double holding, const Setting& setting) {
    Mixture mixture(Of::kSteps, setting);
    const auto longest = static_cast<size_t>(LongestOf(steps));
    mixture.Add(steps[longest].start);
    mixture.Add(steps[longest].stop);
    mixture.Add(holding);
    for (size_t k = 0; k < steps.size(); ++k) {
        if (k == longest) continue;
        mixture.Add(steps[k].before);
        mixture.Add(steps[k].start);
        mixture.Add(steps[k].stop);
        mixture.Add(levels[k]);
    }
    return mixture.Get();
}

int64_t FamilyOfRecord(const Stimulus& stimulus, int32_t points, const Setting& setting) {
    Mixture mixture(Of::kRecord, setting);
    mixture.Add(points);
    AddRecord(mixture, stimulus);
    return mixture.Get();
}

}  // namespace corvantis::reading
