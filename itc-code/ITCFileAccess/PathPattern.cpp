// Matching names with wildcards, without recursion: a star takes more only when what follows it
// does not fit.
#include "ITCFileAccess/PathPattern.h"

#include <optional>

namespace corvantis {
namespace {

constexpr size_t kNone = std::wstring_view::npos;

struct Set {
    std::wstring_view members;
    bool isInverted = false;
    size_t length = 0;  // of all of it in the pattern
};

// A "]" that comes first is a member; a "[" without end stands for itself.
std::optional<Set> SetAt(std::wstring_view pattern) {
    if (pattern.empty() || pattern[0] != L'[') return std::nullopt;
    const bool isInverted = pattern.size() > 1 && pattern[1] == L'!';
    const size_t first = isInverted ? 2 : 1;
    const size_t end = pattern.find(L']', first + 1);
    if (end == kNone) return std::nullopt;
    return Set{pattern.substr(first, end - first), isInverted, end + 1};
}

bool Contains(const Set& set, wchar_t character) {
    const std::wstring_view members = set.members;
    for (size_t i = 0; i < members.size(); ++i) {
        const bool isRange = i + 2 < members.size() && members[i + 1] == L'-';
        const wchar_t last = isRange ? members[i + 2] : members[i];
        if (character >= members[i] && character <= last) return !set.isInverted;
        if (isRange) i += 2;
    }
    return set.isInverted;
}

// How much of the pattern the character takes; nothing if it does not fit.
size_t Take(wchar_t character, std::wstring_view pattern) {
    if (pattern.empty()) return 0;
    if (pattern[0] == L'?') return 1;
    if (const auto set = SetAt(pattern)) return Contains(*set, character) ? set->length : 0;
    return pattern[0] == character ? 1 : 0;
}

}  // namespace

bool HasWildcards(std::wstring_view pattern) { return pattern.find_first_of(L"*?[") != kNone; }

bool MatchesPattern(std::wstring_view name, std::wstring_view pattern) {
    size_t n = 0, p = 0, star = kNone, taken = 0;
    while (n < name.size()) {
        if (p < pattern.size() && pattern[p] == L'*') {
            star = ++p;
            taken = n;
        } else if (const size_t length = Take(name[n], pattern.substr(p)); length > 0) {
            ++n;
            p += length;
        } else if (star != kNone) {
            p = star;
            n = ++taken;
        } else {
            return false;
        }
    }
    while (p < pattern.size() && pattern[p] == L'*') ++p;
    return p == pattern.size();
}

}  // namespace corvantis
