// The values of headers and records as a protocol has them.
#pragma once

#include <nlohmann/json.hpp>

#include "Corvantis.h"

namespace corvantis::rig {

using Json = nlohmann::ordered_json;

// The fewest digits that give the number back; text of a number that JSON does not have.
Json NumberOf(float number);

// Of an entry, or of the epoch. What is 0 or empty is left out.
void AddHeaderValues(Json& json, const ITCEpochHeader& header, size_t entry);
void AddHeaderValues(Json& json, const ITCEpochHeader& header);

// Of a stimulus of that type, all of them.
void AddRecordValues(Json& json, int32_t type, const void* record);

}  // namespace corvantis::rig
