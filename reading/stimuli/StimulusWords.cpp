// What a person wants to know of each record, by the names of its fields: levels in units, lengths
// in milliseconds.
#include "stimuli/StimulusWords.h"

#include <charconv>
#include <cmath>
#include <cstring>
#include <optional>
#include <string_view>

#include "stimuli/Stimuli.h"
#include "text/Words.h"

namespace corvantis::reading {
namespace {

struct Detail {
    std::string_view field;
    const char* words;
    bool isLength;
};

constexpr Detail kDetails[] = {{"period", "period", true},
                               {"halfPeriod", "half period", true},
                               {"segmentPoints", "segments of", true},
                               {"seed", "seed", false},
                               {"cutoffFrequency", "cut-off [Hz]", false},
                               {"filterOrder", "order", false}};

// Six digits are more than a converter has.
std::string Short(double value) {
    char room[32];
    const auto result =
        std::to_chars(room, room + sizeof room, value, std::chars_format::general, 6);
    return {room, result.ptr};
}

// All fields of stimuli that words are made of are whole numbers.
std::optional<int32_t> ValueOf(const Stimulus& stimulus, std::string_view name) {
    for (const Field& field : RowOf(stimulus.type).record->fields) {
        const bool isWhole = field.kind == FieldKind::kInt32 && field.count == 1;
        if (!isWhole || field.text.name != name) continue;
        int32_t value;
        std::memcpy(&value, stimulus.record.data() + field.place, sizeof value);
        return value;
    }
    return std::nullopt;
}

std::string Amount(double counts, const Scale& scale) {
    constexpr double kWords = 65536.0;
    if (scale.isWord) counts -= kWords * std::floor(counts / kWords);
    return Say(Short(InUnits(counts, scale)), " ", scale.unit);
}

std::string Milliseconds(int32_t samples, int32_t interval) {
    return Short(static_cast<double>(int64_t{samples} * interval) / 1000.0) + " ms";
}

std::string RecordWords(const Stimulus& stimulus, const Scale& scale, int32_t interval) {
    const auto valueOf = [&](std::string_view name) { return ValueOf(stimulus, name); };
    std::string text(TypeName(stimulus.type));
    if (const auto amplitude = valueOf("amplitude")) {
        text +=
            Say(" ", Amount(*amplitude, scale), " on ", Amount(valueOf("mean").value_or(0), scale));
    }
    if (const auto points = valueOf("points")) {
        text += Say(", ", Milliseconds(*points, interval), " after ",
                    Milliseconds(valueOf("prePoints").value_or(0), interval));
    }
    for (const Detail& detail : kDetails) {
        const auto value = valueOf(detail.field);
        if (!value) continue;
        text += Say(", ", detail.words, " ",
                    detail.isLength ? Milliseconds(*value, interval) : std::to_string(*value));
    }
    return text;
}

}  // namespace

std::string StimulusWords(const Stimulus& stimulus, const Scale& scale, int32_t interval) {
    constexpr std::string_view kNotStored = ", waveform not stored";
    if (!stimulus.isRead) return Say("unreadable", kNotStored);
    if (stimulus.type == ITC_STIMULUS_SUMMED) {
        std::string parts;
        for (const Stimulus& each : stimulus.components) {
            if (!parts.empty()) parts += "; ";
            parts += StimulusWords(each, scale, interval);
        }
        return Say("sum of (", parts, ")");
    }
    const std::string_view end = IsComputedFromFile(stimulus.type) ? "" : kNotStored;
    return RecordWords(stimulus, scale, interval).append(end);
}

}  // namespace corvantis::reading
