// What a recording's comment says of its protocol, and finding it again.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace corvantis::rig {

struct Origin {
    std::string digest;           // of the protocol's text, SHA-256
    int64_t first = 0;            // of its epochs, where the recording begins
    bool continuesNoise = false;  // of the epochs before that
};

// How long the author's own comment may be, whoever plays and wherever the recording begins: what
// was recorded once can be gone on with [bytes].
size_t CommentRoom();
// Of a comment that has room.
std::string FileComment(std::string_view comment, bool isSimulated, const Origin& origin);

// What the comment ends with; nothing where it ends otherwise.
std::optional<Origin> OriginOf(std::string_view comment);
// The author's own part.
std::string OwnComment(std::string_view comment);

// Where the text of a recording's protocol lies.
std::string ProtocolPath(const std::string& recording);

}  // namespace corvantis::rig
