// Each record's fields by their names; those that are levels in units too.
#include "stimuli/StimulusJson.h"

#include <cmath>
#include <cstring>
#include <span>
#include <string_view>

#include "ITCFileIO/RecordLayouts.h"
#include "stimuli/Stimuli.h"
#include "text/Json.h"
#include "text/Words.h"

namespace corvantis::reading {
namespace {

using Bytes = std::span<const std::byte>;

template <class T>
T ValueAt(Bytes record, size_t place) {
    T value;
    std::memcpy(&value, record.data() + place, sizeof value);
    return value;
}

int64_t WholeAt(Bytes record, FieldKind kind, size_t place) {
    switch (kind) {
        case FieldKind::kInt8:
            return ValueAt<int8_t>(record, place);
        case FieldKind::kUInt16:
            return ValueAt<uint16_t>(record, place);
        case FieldKind::kUInt32:
            return ValueAt<uint32_t>(record, place);
        default:
            return ValueAt<int32_t>(record, place);
    }
}

bool IsLevel(const Field& field) {
    return field.count == 1 && field.kind != FieldKind::kFloat && field.text.unit == kCodes;
}

const char* NameOfNotFinite(float value) {
    if (std::isnan(value)) return "\"NaN\"";
    return value > 0 ? "\"Infinity\"" : "\"-Infinity\"";
}

std::string ElementJson(const Field& field, Bytes record, uint32_t index, JsonList& notFinite) {
    const size_t place = field.place + size_t{index} * field.size;
    if (field.kind != FieldKind::kFloat) {
        return std::to_string(WholeAt(record, field.kind, place));
    }
    const auto value = ValueAt<float>(record, place);
    if (!std::isfinite(value)) {
        notFinite.Add(field.count == 1 ? field.text.name : Say(field.text.name, "[", index, "]"),
                      NameOfNotFinite(value));
    }
    return JsonNumber(value);
}

std::string FieldJson(const Field& field, Bytes record, JsonList& notFinite) {
    if (field.count == 1) return ElementJson(field, record, 0, notFinite);
    JsonList list('[', ']');
    for (uint32_t i = 0; i < field.count; ++i) list.Add(ElementJson(field, record, i, notFinite));
    return list.Text();
}

std::string LevelJson(const Field& field, Bytes record, const Scale& scale) {
    const auto level = static_cast<double>(WholeAt(record, field.kind, field.place));
    return JsonNumber(InUnits(level, scale));
}

}  // namespace

std::string StimulusJson(const Stimulus& stimulus, const Scale& scale) {
    const StimulusType& row = RowOf(stimulus.type);
    const bool isStored = stimulus.isRead && row.record->fileSize > 0;
    JsonList all('{', '}'), parameters('{', '}'), notFinite('{', '}'), levels('{', '}');
    JsonList components('[', ']');
    // Of a sum the components say everything.
    if (isStored && stimulus.type != ITC_STIMULUS_SUMMED) {
        for (const Field& field : row.record->fields) {
            parameters.Add(field.text.name, FieldJson(field, stimulus.record, notFinite));
            if (!IsLevel(field) || scale.isWord) continue;
            levels.Add(field.text.name, LevelJson(field, stimulus.record, scale));
        }
    }
    for (const Stimulus& each : stimulus.components) components.Add(StimulusJson(each, scale));
    all.Add("type", std::to_string(stimulus.type));
    all.Add("name", JsonText(TypeName(stimulus.type)));
    all.Add("isStored", isStored ? "true" : "false");
    all.Add("parameters", parameters.Text());
    all.Add("notFinite", notFinite.Text());
    all.Add("levels", levels.Text());
    all.Add("components", components.Text());
    return all.Text();
}

}  // namespace corvantis::reading
