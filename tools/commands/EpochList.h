// Lists of epoch numbers as users write them: 0,3-7.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace corvantis::tool {

// The numbers in the order given, each once. Throws a Failure for a text that is no list, or a
// number that the file has not.
std::vector<int64_t> ParseEpochList(const std::string& text, int64_t epochsInFile);

}  // namespace corvantis::tool
