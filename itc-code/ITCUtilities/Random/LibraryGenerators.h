// The library's own generators, behind its exported functions: for what those compute alone.
#pragma once

#include "ITCUtilities/Random/NoiseGenerators.h"

namespace corvantis {

NoiseGenerators& LibraryGenerators();

}  // namespace corvantis
