// Pieces of JSON.
#pragma once

#include <string>
#include <string_view>

namespace corvantis::reading {

// A number in the fewest digits that give it back, with a point or an exponent; null if it is not
// finite.
std::string JsonNumber(float value);
std::string JsonNumber(double value);
// A text of UTF-8 without control characters.
std::string JsonText(std::string_view text);
// ["a", "b"] of pieces, between these brackets.
class JsonList {
  public:
    JsonList(char open, char close) : text_(1, open), close_(close) {}
    void Add(const std::string& piece) {
        if (text_.size() > 1) text_ += ',';
        text_ += piece;
    }
    void Add(std::string_view name, const std::string& piece) { Add(JsonText(name) + ':' + piece); }
    std::string Text() const { return text_ + close_; }

  private:
    std::string text_;
    char close_;
};

}  // namespace corvantis::reading
