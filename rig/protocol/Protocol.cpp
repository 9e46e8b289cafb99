// Reading a protocol file.
#include "protocol/Protocol.h"

#include <fstream>

#include "files/Failure.h"
#include "files/Path.h"
#include "protocol/Digest.h"
#include "protocol/FieldRules.h"

namespace corvantis::rig {

namespace {
constexpr std::streamoff kLargestText = 1 << 30;
}

Protocol::Protocol(std::string file, std::string text)
    : file_(std::move(file)), text_(std::move(text)), document_(ParseDocument(file_, text_)) {
    CheckForm(Root());
}

std::string Protocol::Digest() const { return Sha256(text_); }

size_t Protocol::Epochs() const {
    const Node epochs = Root()["epochs"];
    return epochs ? epochs.Size() : 0;
}

Node Protocol::FieldOf(const Node& epoch, std::string_view name) const {
    if (Node own = epoch[name]) return own;
    const Node defaults = Root()["defaults"];
    return defaults ? defaults[name] : defaults;
}

std::string ReadText(const std::string& path) {
    std::ifstream file(tool::PathOf(path), std::ios::binary | std::ios::ate);
    const std::streamoff size = file ? std::streamoff{file.tellg()} : -1;
    if (size < 0) throw tool::SystemFailure(path);
    if (size > kLargestText) throw tool::Failure(path, "too large for a protocol");
    std::string text(static_cast<size_t>(size), ' ');
    file.seekg(0);
    if (!file.read(text.data(), size)) throw tool::SystemFailure(path);
    return text;
}

}  // namespace corvantis::rig
