// The values of a record's fields, as JSON and as text.
#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <span>
#include <string>

#include "CorvantisReading.h"
#include "units/Scale.h"

namespace corvantis::tool {

using Json = nlohmann::ordered_json;

// Of CORVANTIS_FILE_HEADER, CORVANTIS_EPOCH_HEADER or a stimulus type.
std::span<const CorvantisField> FieldsOf(int32_t record);

// Whether it is a level, which has a value in the units of its entry too.
bool IsLevel(const CorvantisField& field);
double LevelOf(const CorvantisField& field, const void* record);
inline double InUnits(double counts, const CorvantisScaleInfo& scale) {
    return reading::InUnits(counts, scale.countsPerVolt, scale.gain, scale.factor);
}

// Numbers, texts and lists of them by their fields' names. A number that is not finite is null, and
// what it is stands in `notFinite` under its field's name.
Json FieldValues(std::span<const CorvantisField> fields, const void* record, Json& notFinite);

// For people.
std::string ShownValue(const CorvantisField& field, const void* record);

}  // namespace corvantis::tool
