// Numbers of each kind in memory.
#include "plan/StoredFields.h"

#include <fmt/format.h>

#include <cstring>
#include <limits>

namespace corvantis::rig {
namespace {

template <class Number>
void StoreWhole(const Amount& amount, void* place) {
    const auto number = static_cast<Number>(Rounded(amount.node, amount.value,
                                                    double{std::numeric_limits<Number>::min()},
                                                    double{std::numeric_limits<Number>::max()}));
    std::memcpy(place, &number, sizeof number);
}

void StoreFloat(const Amount& amount, void* place) {
    const auto number = static_cast<float>(amount.value);
    std::memcpy(place, &number, sizeof number);
}

}  // namespace

void StoreAmount(const Amount& amount, const Field& field, size_t element, void* record) {
    void* place = static_cast<std::byte*>(record) + field.place + element * field.size;
    switch (field.kind) {
        case FieldKind::kInt8:
            return StoreWhole<int8_t>(amount, place);
        case FieldKind::kUInt16:
            return StoreWhole<uint16_t>(amount, place);
        case FieldKind::kInt32:
            return StoreWhole<int32_t>(amount, place);
        case FieldKind::kUInt32:
            return StoreWhole<uint32_t>(amount, place);
        case FieldKind::kFloat:
            return StoreFloat(amount, place);
        case FieldKind::kText:
            return;
    }
}

void StoreText(const Node& node, std::string_view text, const Field& field, size_t element,
               void* record) {
    if (text.size() > field.size) {
        node.Fail(fmt::format("is of {} bytes, and {} can be kept", text.size(), field.size));
    }
    char* place = static_cast<char*>(record) + field.place + element * field.size;
    std::memset(place, 0, field.size);
    std::memcpy(place, text.data(), text.size());
}

int32_t WholeAt(const void* record, int32_t place) {
    int32_t value;
    std::memcpy(&value, static_cast<const std::byte*>(record) + place, sizeof value);
    return value;
}

void StoreWholeAt(void* record, int32_t place, int32_t value) {
    std::memcpy(static_cast<std::byte*>(record) + place, &value, sizeof value);
}

}  // namespace corvantis::rig
