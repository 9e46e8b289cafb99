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

int32_t Reporter::Report(CorvantisResult code, int64_t offset, std::string_view text) const {
    if (problem_ == nullptr) return code;
    problem_->code = code;
    problem_->offset = offset;
    StoreText(Say(ShortName(name_), ": ", text), problem_->text);
    return code;
}

int32_t Reporter::ReportEpoch(CorvantisResult code, int64_t number, int64_t offset,
                              std::string_view text) const {
    if (problem_ == nullptr) return code;
    const std::string place = offset < 0 ? "" : Say(" at byte ", offset);
    return Report(code, offset, Say("epoch ", number, place, ": ", text));
}

int32_t Reporter::ReportFault(const FileView& view) const {
    const bool isShort = view.Fault() == ReadFault::kShort;
    const std::string place = Say("byte ", view.FaultOffset(), ": ");
    return isShort ? Report(CORVANTIS_CHANGED, view.FaultOffset(),
                            place +
                                "found the end of the file, which became shorter while it was "
                                "read")
                   : Report(CORVANTIS_FILE_ERROR, view.FaultOffset(), place + "cannot be read");
}

std::string InWords(const Mismatch& mismatch) {
    return Say("found ", mismatch.found, ", expected ", mismatch.expected);
}

}  // namespace corvantis::reading
