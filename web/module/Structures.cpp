// Each member named once; its place, kind and count are the compiler's.
#include "Structures.h"

#include <array>
#include <cstddef>
#include <string>
#include <type_traits>

namespace {

struct Member {
    const char* structure;
    size_t size;
    const char* name;
    size_t place;
    const char* kind;
    size_t count;
};

struct Constant {
    const char* name;
    int value;
};

template <class Element>
constexpr const char* KindOf() {
    if constexpr (std::is_pointer_v<Element>) return "pointer";
    if constexpr (std::is_same_v<Element, char>) return "text";
    if constexpr (std::is_same_v<Element, uint8_t>) return "bytes";
    if constexpr (std::is_same_v<Element, double>) return "double";
    if constexpr (std::is_same_v<Element, int64_t>) return "int64";
    if constexpr (std::is_same_v<Element, int32_t>) return "int32";
}

template <class Type>
constexpr size_t CountOf() {
    return std::is_array_v<Type> ? std::extent_v<Type> : 1;
}

#define MEMBER(Structure, name)                                                 \
    Member {                                                                    \
#Structure, sizeof(Structure), #name, offsetof(Structure, name),        \
            KindOf < std::remove_all_extents_t < decltype(Structure::name)>>(), \
            CountOf < decltype(Structure::name)>()                              \
    }
#define CONSTANT(name) \
    Constant { #name, name }

constexpr std::array kMembers = {
    MEMBER(CorvantisProblem, code),
    MEMBER(CorvantisProblem, reason),
    MEMBER(CorvantisProblem, text),
    MEMBER(CorvantisRecordingInfo, size),
    MEMBER(CorvantisRecordingInfo, epochs),
    MEMBER(CorvantisRecordingInfo, version),
    MEMBER(CorvantisRecordingInfo, found),
    MEMBER(CorvantisFinding, offset),
    MEMBER(CorvantisFinding, epoch),
    MEMBER(CorvantisFinding, weight),
    MEMBER(CorvantisFinding, place),
    MEMBER(CorvantisFinding, found),
    MEMBER(CorvantisFinding, expected),
    MEMBER(CorvantisField, name),
    MEMBER(CorvantisField, unit),
    MEMBER(CorvantisField, meaning),
    MEMBER(CorvantisField, kind),
    MEMBER(CorvantisField, size),
    MEMBER(CorvantisField, count),
    MEMBER(CorvantisField, place),
    MEMBER(CorvantisTypeInfo, name),
    MEMBER(CorvantisTypeInfo, caveat),
    MEMBER(CorvantisEpochInfo, start),
    MEMBER(CorvantisEpochInfo, points),
    MEMBER(CorvantisEpochInfo, entries),
    MEMBER(CorvantisEpochInfo, samplingInterval),
    MEMBER(CorvantisEpochInfo, stimulusTypes),
    MEMBER(CorvantisEpochInfo, inputs),
    MEMBER(CorvantisEpochInfo, outputs),
    MEMBER(CorvantisStimulusRecord, type),
    MEMBER(CorvantisStimulusRecord, components),
    MEMBER(CorvantisStimulusRecord, isThere),
    MEMBER(CorvantisStimulusRecord, record),
    MEMBER(CorvantisDoubt, reason),
    MEMBER(CorvantisDoubt, text),
    MEMBER(CorvantisScaleInfo, countsPerVolt),
    MEMBER(CorvantisScaleInfo, gain),
    MEMBER(CorvantisScaleInfo, factor),
    MEMBER(CorvantisScaleInfo, isWord),
    MEMBER(CorvantisScaleInfo, unit),
    MEMBER(CorvantisScaleInfo, formula),
    MEMBER(CorvantisStep, before),
    MEMBER(CorvantisStep, start),
    MEMBER(CorvantisStep, stop),
    MEMBER(CorvantisStep, level),
    MEMBER(CorvantisCourse, family),
    MEMBER(CorvantisCourse, steps),
    MEMBER(CorvantisCourse, longest),
    MEMBER(CorvantisStepResponse, baseline),
    MEMBER(CorvantisStepResponse, peak),
    MEMBER(CorvantisStepResponse, steady),
    MEMBER(CorvantisStepResponse, spikes),
    MEMBER(CorvantisStepResponse, late),
};

constexpr std::array kConstants = {
    CONSTANT(CORVANTIS_NO_STIMULUS),
    CONSTANT(CORVANTIS_DAMAGED),
    CONSTANT(CORVANTIS_CHANGED),
    CONSTANT(CORVANTIS_FILE_HEADER_SIZE),
    CONSTANT(CORVANTIS_EPOCH_HEADER_SIZE),
    CONSTANT(CORVANTIS_ALL_ENTRIES),
    CONSTANT(CORVANTIS_BY_WALKING),
    CONSTANT(CORVANTIS_NOTE),
    CONSTANT(CORVANTIS_DOUBT),
    CONSTANT(CORVANTIS_FAULT),
    CONSTANT(CORVANTIS_INT8),
    CONSTANT(CORVANTIS_UINT16),
    CONSTANT(CORVANTIS_INT32),
    CONSTANT(CORVANTIS_UINT32),
    CONSTANT(CORVANTIS_FLOAT),
    CONSTANT(CORVANTIS_TEXT),
    CONSTANT(CORVANTIS_FILE_HEADER),
    CONSTANT(CORVANTIS_EPOCH_HEADER),
    CONSTANT(CORVANTIS_EXCITATORY),
    CONSTANT(CORVANTIS_INHIBITORY),
    CONSTANT(CORVANTIS_RESPONSE),
    CONSTANT(CORVANTIS_STIMULUS),
    CONSTANT(CORVANTIS_CONDUCTANCE),
    CONSTANT(CORVANTIS_NO_DOUBT),
    CONSTANT(CORVANTIS_RESTS_ON_ORDER),
    CONSTANT(CORVANTIS_SPIKE_THRESHOLD),
};

std::string Quoted(const char* text) { return '"' + std::string(text) + '"'; }

std::string MemberJson(const Member& member) {
    return Quoted(member.name) + ":{\"place\":" + std::to_string(member.place) +
           ",\"kind\":" + Quoted(member.kind) + ",\"count\":" + std::to_string(member.count) + "}";
}

// The members of a structure stand one after the other.
std::string StructuresJson() {
    std::string text;
    std::string current;
    for (const Member& member : kMembers) {
        if (current != member.structure) {
            text += text.empty() ? "" : "}},";
            current = member.structure;
            text += Quoted(member.structure) + ":{\"size\":" + std::to_string(member.size) +
                    ",\"members\":{";
        } else {
            text += ',';
        }
        text += MemberJson(member);
    }
    return text + "}}";
}

std::string ConstantsJson() {
    std::string text;
    for (const Constant& constant : kConstants) {
        text += text.empty() ? "" : ",";
        text += Quoted(constant.name) + ":" + std::to_string(constant.value);
    }
    return text;
}

}  // namespace

const char* CorvantisStructures(void) {
    static const std::string text =
        "{\"structures\":{" + StructuresJson() + "},\"constants\":{" + ConstantsJson() + "}}";
    return text.c_str();
}
