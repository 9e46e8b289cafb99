// The platform's rand where it is the one, else the recurrence that defines it, over all its words.
#include "reference/OldNumbers.h"

#include <cstdlib>
#include <vector>

namespace definition {

#if defined(__GLIBC__)

void SeedOldNumbers(uint32_t seed) { std::srand(seed); }
int32_t NextOldNumber() { return std::rand(); }

#else

namespace {

std::vector<uint32_t> words;

void AddWord() { words.push_back(words[words.size() - 3] + words[words.size() - 31]); }

}  // namespace

void SeedOldNumbers(uint32_t seed) {
    int64_t word = seed == 0 ? 1 : static_cast<int32_t>(seed);
    words.clear();
    for (int i = 0; i < 31; ++i) {
        words.push_back(static_cast<uint32_t>(word));
        word = word * 16807 % 2147483647;
        if (word < 0) word += 2147483647;
    }
    for (int i = 0; i < 3; ++i) words.push_back(words[words.size() - 31]);
    while (words.size() < 344) AddWord();
}

int32_t NextOldNumber() {
    if (words.empty()) SeedOldNumbers(1);
    AddWord();
    return static_cast<int32_t>(words.back() >> 1);
}

#endif

}  // namespace definition
