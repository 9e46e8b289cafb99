// Problems as sentences.
#include "recording/Problem.h"

#include "text/Text.h"
#include "text/Words.h"

namespace corvantis::reading {
namespace {

constexpr size_t kLongestName = 200;

// The end of a long name tells more than its beginning.
std::string ShortName(std::string_view name) {
    std::string shown = DisplayText(name);
    if (shown.size() <= kLongestName) return shown;
    size_t from = shown.size() - kLongestName;
    while (from < shown.size() && (static_cast<uint8_t>(shown[from]) & 0xC0) == 0x80) ++from;
    return "..." + shown.substr(from);
}

}  // namespace

int32_t Reporter::Say(CorvantisResult code, int64_t offset, std::string_view place,
                      std::string_view reason) const {
    if (problem_ == nullptr) return code;
    const std::string before = reading::Say(ShortName(name_), ": ", place);
    problem_->code = code;
    problem_->reason = static_cast<int32_t>(before.size());
    problem_->offset = offset;
    StoreText(reading::Say(before, reason), problem_->text);
    return code;
}

int32_t Reporter::Report(CorvantisResult code, int64_t offset, std::string_view text) const {
    return Say(code, offset, "", text);
}

int32_t Reporter::ReportEpoch(CorvantisResult code, int64_t number, int64_t offset,
                              std::string_view text) const {
    if (problem_ == nullptr) return code;
    const std::string place = offset < 0 ? "" : reading::Say(" at byte ", offset);
    return Say(code, offset, reading::Say("epoch ", number, place, ": "), text);
}

int32_t Reporter::ReportFault(const FileView& view) const {
    const int64_t offset = view.FaultOffset();
    const std::string place = reading::Say("byte ", offset, ": ");
    if (view.Fault() != ReadFault::kShort) {
        return Say(CORVANTIS_FILE_ERROR, offset, place, "cannot be read");
    }
    return Say(CORVANTIS_CHANGED, offset, place,
               "found the end of the file, which became shorter while it was read");
}

std::string InWords(const Mismatch& mismatch) {
    return Say("found ", mismatch.found, ", expected ", mismatch.expected);
}

}  // namespace corvantis::reading
