// A protocol file, its form checked: what the plan of epochs is made of.
#pragma once

#include <string>

#include "document/Document.h"

namespace corvantis::rig {

class Protocol {
  public:
    // The file is what messages call it. Throws a Failure.
    Protocol(std::string file, std::string text);
    Protocol(const Protocol&) = delete;
    Protocol& operator=(const Protocol&) = delete;

    Node Root() const { return {&document_, "", &file_}; }
    const std::string& File() const { return file_; }
    const std::string& Text() const { return text_; }
    // SHA-256 of the text, in hexadecimal digits.
    std::string Digest() const;

    size_t Epochs() const;
    Node Epoch(size_t index) const { return Root()["epochs"].Item(index); }
    // A field of an epoch, or else of the defaults.
    Node FieldOf(const Node& epoch, std::string_view name) const;

  private:
    std::string file_;
    std::string text_;
    Value document_;
};

// Reads a whole file. Throws a Failure.
std::string ReadText(const std::string& path);

}  // namespace corvantis::rig
