// A field's value out of the bytes of its record.
#include "stimuli/Fields.h"

#include <fmt/core.h>

#include <cmath>
#include <cstring>

#include "output/Text.h"

namespace corvantis::tool {
namespace {

Json Number(float value) {
    if (!std::isfinite(value)) return fmt::format("{}", value);
    return std::stod(fmt::format("{}", value));  // 0.01, not the nearest float's digits
}
Json Number(auto value) { return value; }

template <class T>
Json Element(const char* bytes) {
    T value;
    std::memcpy(&value, bytes, sizeof value);
    return Number(value);
}

Json ElementOf(const Field& field, const char* bytes) {
    switch (field.kind) {
        case FieldKind::kInt8:
            return Element<int8_t>(bytes);
        case FieldKind::kUInt16:
            return Element<uint16_t>(bytes);
        case FieldKind::kInt32:
            return Element<int32_t>(bytes);
        case FieldKind::kUInt32:
            return Element<uint32_t>(bytes);
        case FieldKind::kFloat:
            return Element<float>(bytes);
        case FieldKind::kText:
            return DisplayText({bytes, field.size});
    }
    return {};
}

}  // namespace

Json FieldValue(const Field& field, const void* record) {
    const char* bytes = static_cast<const char*>(record) + field.place;
    if (field.count == 1) return ElementOf(field, bytes);
    Json list = Json::array();
    for (uint32_t i = 0; i < field.count; ++i) {
        list.push_back(ElementOf(field, bytes + size_t{i} * field.size));
    }
    return list;
}

}  // namespace corvantis::tool
