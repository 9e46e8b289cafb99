// What the WebAssembly module offers beside the reading library's interface.
#pragma once

#include "CorvantisReading.h"

/**
 * As CorvantisOpenSource, from a file that the page calls by a number. The page gives two functions
 * as imports of the module "page": size(file) and read(file, offset, address, count).
 */
extern "C" CORVANTIS_API int32_t CorvantisOpenPageFile(int32_t file, const char* name,
                                                       CorvantisRecording** recording,
                                                       CorvantisProblem* problem);
