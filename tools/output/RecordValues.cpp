// Fields' values out of the bytes of their record.
#include "output/RecordValues.h"

#include <fmt/core.h>

#include <cmath>
#include <cstring>
#include <string_view>
#include <variant>

#include "ITCFileIO/RecordLayouts.h"
#include "text/Text.h"

namespace corvantis::tool {
namespace {

using Value = std::variant<int64_t, float, std::string>;

template <class T>
Value Element(const char* bytes) {
    T value;
    std::memcpy(&value, bytes, sizeof value);
    return value;
}

template <class T>
Value Whole(const char* bytes) {
    T value;
    std::memcpy(&value, bytes, sizeof value);
    return int64_t{value};
}

Value ElementOf(const CorvantisField& field, const void* record, int32_t index) {
    const std::ptrdiff_t place = field.place + std::ptrdiff_t{index} * field.size;
    const char* bytes = static_cast<const char*>(record) + place;
    switch (field.kind) {
        case CORVANTIS_INT8:
            return Whole<int8_t>(bytes);
        case CORVANTIS_UINT16:
            return Whole<uint16_t>(bytes);
        case CORVANTIS_INT32:
            return Whole<int32_t>(bytes);
        case CORVANTIS_UINT32:
            return Whole<uint32_t>(bytes);
        case CORVANTIS_FLOAT:
            return Element<float>(bytes);
        default:
            return reading::DisplayText({bytes, static_cast<size_t>(field.size)});
    }
}

const char* NameOfNotFinite(float value) {
    if (std::isnan(value)) return "NaN";
    return value > 0 ? "Infinity" : "-Infinity";
}

// A finite number in the digits that give it back: 0.01, not those of the nearest double.
Json JsonOf(const Value& value) {
    if (const auto* number = std::get_if<float>(&value)) {
        if (!std::isfinite(*number)) return nullptr;
        return std::stod(fmt::format("{}", *number));
    }
    if (const auto* text = std::get_if<std::string>(&value)) return *text;
    return std::get<int64_t>(value);
}

}  // namespace

std::span<const CorvantisField> FieldsOf(int32_t record) {
    const CorvantisField* fields = nullptr;
    int32_t count = 0;
    if (CorvantisFields(record, &fields, &count) != CORVANTIS_SUCCESS) return {};
    return {fields, static_cast<size_t>(count)};
}

bool IsLevel(const CorvantisField& field) {
    const bool isWhole = field.kind != CORVANTIS_FLOAT && field.kind != CORVANTIS_TEXT;
    return field.count == 1 && isWhole && std::string_view(field.unit) == kCodes;
}

double LevelOf(const CorvantisField& field, const void* record) {
    return static_cast<double>(std::get<int64_t>(ElementOf(field, record, 0)));
}

Json FieldValues(std::span<const CorvantisField> fields, const void* record, Json& notFinite) {
    Json values = Json::object();
    for (const CorvantisField& field : fields) {
        Json list = Json::array();
        for (int32_t i = 0; i < field.count; ++i) {
            const Value value = ElementOf(field, record, i);
            list.push_back(JsonOf(value));
            if (!list.back().is_null()) continue;
            const char* name = NameOfNotFinite(std::get<float>(value));
            if (field.count == 1) {
                notFinite[field.name] = name;
            } else {
                notFinite[fmt::format("{}[{}]", field.name, i)] = name;
            }
        }
        values[field.name] = field.count == 1 ? list[0] : list;
    }
    return values;
}

std::string ShownValue(const CorvantisField& field, const void* record) {
    std::string shown;
    for (int32_t i = 0; i < field.count; ++i) {
        if (i > 0) shown += ", ";
        const Value value = ElementOf(field, record, i);
        shown += std::visit([](const auto& each) { return fmt::format("{}", each); }, value);
    }
    return shown;
}

}  // namespace corvantis::tool
