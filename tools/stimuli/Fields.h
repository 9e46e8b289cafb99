// The fields of a record as JSON, by the library's own list of them.
#pragma once

#include <nlohmann/json.hpp>

#include "ITCFileIO/RecordFields.h"

namespace corvantis::tool {

using Json = nlohmann::ordered_json;

// A number, a text, or a list of either. JSON has no number for what is infinite or undefined: that
// is a text.
Json FieldValue(const Field& field, const void* record);

}  // namespace corvantis::tool
