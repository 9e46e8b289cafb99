// The marks around an author's comment.
#include "session/FileComment.h"

#include <fmt/format.h>

#include <charconv>
#include <limits>

#include "Corvantis.h"

namespace corvantis::rig {
namespace {

constexpr std::string_view kSimulated = "SIMULATED: no cell was recorded. ";
constexpr std::string_view kProtocol = " [protocol SHA-256 ";
constexpr std::string_view kFirst = ", from epoch ";
constexpr std::string_view kNoise = ", noise from before it";
constexpr size_t kDigestLength = 64;
constexpr size_t kLongestNumber = std::numeric_limits<int64_t>::digits10 + 1;

std::string_view Marks(std::string_view comment) {
    const size_t at = comment.rfind(kProtocol);
    return at == std::string_view::npos || comment.back() != ']' ? std::string_view()
                                                                 : comment.substr(at);
}

}  // namespace

size_t CommentRoom() {
    return ITC_COMMENT_LENGTH - 1 - kSimulated.size() - kProtocol.size() - kDigestLength -
           kFirst.size() - kLongestNumber - kNoise.size() - 1;
}

std::string FileComment(std::string_view comment, bool isSimulated, const Origin& origin) {
    const std::string first = origin.first == 0 ? std::string()
                                                : fmt::format("{}{}{}", kFirst, origin.first,
                                                              origin.continuesNoise ? kNoise : "");
    const std::string_view mark = isSimulated ? kSimulated : std::string_view();
    return fmt::format("{}{}{}{}{}]", mark, comment, kProtocol, origin.digest, first);
}

std::optional<Origin> OriginOf(std::string_view comment) {
    std::string_view marks = Marks(comment);
    if (marks.size() < kProtocol.size() + kDigestLength + 1) return std::nullopt;
    marks.remove_prefix(kProtocol.size());
    Origin origin = {std::string(marks.substr(0, kDigestLength))};
    marks.remove_prefix(kDigestLength);
    if (marks == "]") return origin;
    if (!marks.starts_with(kFirst)) return std::nullopt;
    marks.remove_prefix(kFirst.size());
    const auto end = std::from_chars(marks.data(), marks.data() + marks.size(), origin.first);
    if (end.ec != std::errc() || origin.first < 0) return std::nullopt;
    marks.remove_prefix(static_cast<size_t>(end.ptr - marks.data()));
    origin.continuesNoise = marks.starts_with(kNoise);
    if (origin.continuesNoise) marks.remove_prefix(kNoise.size());
    if (marks != "]") return std::nullopt;
    return origin;
}

std::string OwnComment(std::string_view comment) {
    if (OriginOf(comment)) comment.remove_suffix(Marks(comment).size());
    if (comment.starts_with(kSimulated)) comment.remove_prefix(kSimulated.size());
    return std::string(comment);
}

std::string ProtocolPath(const std::string& recording) { return recording + ".protocol.json"; }

}  // namespace corvantis::rig
