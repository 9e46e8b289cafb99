// The page's server comes with the Python package, which has its own start on Windows.
#include <cstdio>

#include "programs/Watching.h"

namespace corvantis::rig {

Watching::Watching(bool isWanted, const std::string& file) {
    if (!isWanted) return;
    std::fprintf(stderr, "corvantis: to watch, run: corvantis view --follow %s\n", file.c_str());
}

Watching::~Watching() = default;

}  // namespace corvantis::rig
