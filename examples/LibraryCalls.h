// Turns a failing result code of the library into an exception that names the call and the reason.
#pragma once

#include <cstdint>

// Throws std::runtime_error unless the result is ITC_SUCCESS.
void Require(int32_t result, const char* call);
