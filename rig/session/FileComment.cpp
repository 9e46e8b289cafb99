// The marks around an author's comment.
#include "session/FileComment.h"

#include <fmt/format.h>

#include <charconv>

#include "Corvantis.h"
#include "files/Failure.h"

namespace corvantis::rig {
namespace {

constexpr std::string_view kSimulated = "SIMULATED: no cell was recorded. ";
constexpr std::string_view kProtocol = " [protocol SHA-256 ";
constexpr std::string_view kFirst = ", from epoch ";
constexpr size_t kDigestLength = 64;

std::string_view Marks(std::string_view comment) {
    const size_t at = comment.rfind(kProtocol);
    return at == std::string_view::npos || comment.back() != ']' ? std::string_view()
                                                                 : comment.substr(at);
}

}  // namespace

std::string FileComment(std::string_view comment, bool isSimulated, const Origin& origin) {
    const std::string first =
        origin.first == 0 ? std::string() : fmt::format("{}{}", kFirst, origin.first);
    const std::string_view mark = isSimulated ? kSimulated : std::string_view();
    std::string whole = fmt::format("{}{}{}{}{}]", mark, comment, kProtocol, origin.digest, first);
    if (whole.size() >= ITC_COMMENT_LENGTH) {
        const size_t room = ITC_COMMENT_LENGTH - 1 - (whole.size() - comment.size());
        throw tool::Failure(fmt::format(
            "the protocol's comment is of {} bytes, and beside the digest {} can be kept",
            comment.size(), room));
    }
    return whole;
}

std::optional<Origin> OriginOf(std::string_view comment) {
    std::string_view marks = Marks(comment);
    if (marks.size() < kProtocol.size() + kDigestLength + 1) return std::nullopt;
    marks.remove_prefix(kProtocol.size());
    Origin origin = {std::string(marks.substr(0, kDigestLength)), 0};
    marks.remove_prefix(kDigestLength);
    if (marks == "]") return origin;
    if (!marks.starts_with(kFirst)) return std::nullopt;
    marks.remove_prefix(kFirst.size());
    const auto end = std::from_chars(marks.data(), marks.data() + marks.size(), origin.first);
    if (end.ec != std::errc() || origin.first < 0 || *end.ptr != ']') return std::nullopt;
    return origin;
}

std::string OwnComment(std::string_view comment) {
    if (OriginOf(comment)) comment.remove_suffix(Marks(comment).size());
    if (comment.starts_with(kSimulated)) comment.remove_prefix(kSimulated.size());
    return std::string(comment);
}

std::string ProtocolPath(const std::string& recording) { return recording + ".protocol.json"; }

}  // namespace corvantis::rig
