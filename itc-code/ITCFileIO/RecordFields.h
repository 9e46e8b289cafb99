// The fields of a record as a list for programs that show them: name, kind, place, unit, meaning.
#pragma once

#include <array>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "ITCFileIO/RecordCodec.h"
#include "ITCFileIO/RecordLayouts.h"

namespace corvantis {

enum class FieldKind : uint8_t { kInt8, kUInt16, kInt32, kUInt32, kFloat, kText };

struct Field {
    FieldText text;
    FieldKind kind;
    uint32_t size;   // of one element [bytes]; a text is one element
    uint32_t count;  // elements
    uint32_t place;  // in the record, on file as in memory [bytes]
};

template <class Element>
constexpr FieldKind KindOf() {
    if constexpr (kIsText<Element>) return FieldKind::kText;
    if constexpr (std::is_same_v<Element, int8_t>) return FieldKind::kInt8;
    if constexpr (std::is_same_v<Element, uint16_t>) return FieldKind::kUInt16;
    if constexpr (std::is_same_v<Element, int32_t>) return FieldKind::kInt32;
    if constexpr (std::is_same_v<Element, uint32_t>) return FieldKind::kUInt32;
    if constexpr (std::is_same_v<Element, float>) return FieldKind::kFloat;
}

template <class Member>
constexpr Field DescribeField(const FieldText& text, uint32_t place) {
    constexpr bool isText = std::is_same_v<std::remove_all_extents_t<Member>, char>;
    constexpr bool isList = std::rank_v < Member >> (isText ? 1 : 0);
    using Element = std::conditional_t<isList, std::remove_extent_t<Member>, Member>;
    constexpr uint32_t count = isList ? std::extent_v<Member> : 1;
    const FieldKind kind = text.isUnsigned ? FieldKind::kUInt32 : KindOf<Element>();
    return {text, kind, sizeof(Element), count, place};
}

struct FieldCounter {
    constexpr void operator()(const auto& /*member*/, const FieldText& /*text*/) { ++count; }
    constexpr void Zeros(size_t /*bytes*/) {}
    size_t count = 0;
};

template <size_t Count>
struct FieldLister {
    template <class Member>
    constexpr void operator()(const Member& /*member*/, const FieldText& text) {
        fields[listed++] = DescribeField<Member>(text, static_cast<uint32_t>(place));
        place += sizeof(Member);
    }
    constexpr void Zeros(size_t bytes) { place += bytes; }
    std::array<Field, Count> fields = {};
    size_t listed = 0;
    size_t place = 0;
};

template <class Record>
constexpr auto ListFields() {
    constexpr size_t count = [] {
        FieldCounter counter;
        const Record record = {};
        Describe(counter, record);
        return counter.count;
    }();
    FieldLister<count> lister;
    const Record record = {};
    Describe(lister, record);
    return lister.fields;
}

template <class Record>
inline constexpr auto kFields = ListFields<Record>();

}  // namespace corvantis
