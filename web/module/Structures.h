// The C interface's structures and constants for a page, which has no header to read them from.
#pragma once

#include "CorvantisReading.h"

/**
 * Where each member of a structure lies, and the values of constants, as JSON: of each structure
 * its size and its members, each with place, kind ("int32", "int64", "double", "text" in the
 * structure, "pointer", "bytes") and count.
 */
extern "C" CORVANTIS_API const char* CorvantisStructures(void);
