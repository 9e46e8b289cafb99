// Wildcards in file names, for systems whose library has none.
#pragma once

#include <string_view>

namespace corvantis {

// Whether a name is of a pattern in which "*" stands for any characters, "?" for one, and
// "[a-c]" or "[!a-c]" for one of a set.
bool MatchesPattern(std::wstring_view name, std::wstring_view pattern);
bool HasWildcards(std::wstring_view pattern);

}  // namespace corvantis
