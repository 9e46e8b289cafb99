// Parsing lists of epoch numbers.
#include "commands/EpochList.h"

#include <fmt/core.h>

#include <charconv>
#include <set>
#include <string_view>

#include "files/Failure.h"

namespace corvantis::tool {
namespace {

Failure Malformed(const std::string& text) {
    return Failure(fmt::format("--epoch {}: expected numbers and ranges, such as 0,3-7", text));
}

class ListReader {
  public:
    explicit ListReader(const std::string& text) : text_(text), rest_(text) {}

    bool Take(char wanted) {
        const bool found = !rest_.empty() && rest_.front() == wanted;
        if (found) rest_.remove_prefix(1);
        return found;
    }
    bool AtEnd() const { return rest_.empty(); }

    int64_t Number(int64_t epochsInFile) {
        int64_t number = 0;
        const auto [end, error] =
            std::from_chars(rest_.data(), rest_.data() + rest_.size(), number);
        if (end == rest_.data() || number < 0) throw Malformed(text_);
        rest_.remove_prefix(static_cast<size_t>(end - rest_.data()));
        if (error != std::errc() || number >= epochsInFile) {
            throw Failure(fmt::format("--epoch {}: the file has {} epochs, counted from 0", text_,
                                      epochsInFile));
        }
        return number;
    }

  private:
    const std::string& text_;
    std::string_view rest_;
};

}  // namespace

std::vector<int64_t> ParseEpochList(const std::string& text, int64_t epochsInFile) {
    std::vector<int64_t> numbers;
    std::set<int64_t> chosen;
    ListReader reader(text);
    do {
        const int64_t first = reader.Number(epochsInFile);
        const int64_t last = reader.Take('-') ? reader.Number(epochsInFile) : first;
        if (last < first) throw Malformed(text);
        for (int64_t number = first; number <= last; ++number) {
            if (chosen.insert(number).second) numbers.push_back(number);
        }
    } while (reader.Take(','));
    if (!reader.AtEnd()) throw Malformed(text);
    return numbers;
}

}  // namespace corvantis::tool
