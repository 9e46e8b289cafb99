// Reading fields by their descriptions.
#include "writing/StoredValues.h"

#include <charconv>
#include <cmath>
#include <cstring>

#include "protocol/Amounts.h"
#include "protocol/FieldRules.h"
#include "stimuli/Stimuli.h"
#include "text/Text.h"

namespace corvantis::rig {
namespace {

template <class Number>
Number At(const void* place) {
    Number number;
    std::memcpy(&number, place, sizeof number);
    return number;
}

Json TextOf(const void* place, size_t size) {
    const std::string_view bytes(static_cast<const char*>(place), size);
    return WithoutPlaceholders(
        reading::DisplayText(bytes.substr(0, std::min(bytes.find('\0'), bytes.size()))));
}

Json ElementOf(const Field& field, size_t element, const void* record) {
    const void* place = static_cast<const std::byte*>(record) + field.place + element * field.size;
    switch (field.kind) {
        case FieldKind::kInt8:
            return At<int8_t>(place);
        case FieldKind::kUInt16:
            return At<uint16_t>(place);
        case FieldKind::kInt32:
            return At<int32_t>(place);
        case FieldKind::kUInt32:
            return At<uint32_t>(place);
        case FieldKind::kFloat:
            return NumberOf(At<float>(place));
        case FieldKind::kText:
            return TextOf(place, field.size);
    }
    return {};
}

bool IsNothing(const Json& value) {
    return value == 0 || (value.is_string() && value.get_ref<const std::string&>().empty());
}

}  // namespace

Json NumberOf(float number) {
    if (!std::isfinite(number)) return nullptr;
    char room[64];
    const auto end = std::to_chars(room, room + sizeof room, number);
    double shortest = 0;
    std::from_chars(room, end.ptr, shortest);
    return static_cast<float>(shortest) == number ? shortest : double{number};
}

void AddHeaderValues(Json& json, const ITCEpochHeader& header, size_t entry) {
    for (const Field& field : ChannelHeaderFields()) {
        Json value = ElementOf(field, entry, &header);
        if (!value.is_null() && !IsNothing(value)) json[field.text.name] = std::move(value);
    }
}

void AddHeaderValues(Json& json, const ITCEpochHeader& header) {
    for (const Field& field : EpochHeaderFields()) {
        Json values = Json::array();
        bool isNothing = true;
        for (size_t k = 0; k < field.count; ++k) {
            Json value = ElementOf(field, k, &header);
            if (value.is_null()) value = 0;
            isNothing = isNothing && IsNothing(value);
            values.push_back(std::move(value));
        }
        if (!isNothing) json[field.text.name] = field.count == 1 ? values[0] : values;
    }
}

void AddRecordValues(Json& json, int32_t type, const void* record) {
    for (const Field& field : reading::RowOf(type).record->fields) {
        json[field.text.name] = ElementOf(field, 0, record);
    }
}

}  // namespace corvantis::rig
