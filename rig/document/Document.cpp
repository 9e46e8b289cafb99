// Building the tree from the parser's events, while an iterator counts the lines.
#include "document/Document.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>
#include <nlohmann/json.hpp>
#include <numeric>

#include "files/Failure.h"

namespace corvantis::rig {
namespace {

using tool::Failure;

constexpr size_t kDeepest = 64;

struct Position {
    int32_t line = 1;
    char last = ' ';
};

// What is read is counted in one place, whichever copy of the iterator reads it.
class CountingIterator {
  public:
    using iterator_category = std::input_iterator_tag;
    using value_type = char;
    using difference_type = std::ptrdiff_t;
    using pointer = const char*;
    using reference = const char&;

    CountingIterator(const char* at, Position* position) : at_(at), position_(position) {}
    reference operator*() const { return *at_; }
    CountingIterator& operator++() {
        position_->last = *at_;
        if (*at_++ == '\n') ++position_->line;
        return *this;
    }
    const CountingIterator operator++(int) {  // NOLINT(readability-const-return-type)
        const CountingIterator before = *this;
        ++*this;
        return before;
    }
    bool operator==(const CountingIterator& other) const { return at_ == other.at_; }
    bool operator!=(const CountingIterator& other) const { return at_ != other.at_; }

  private:
    const char* at_;
    Position* position_;
};

std::string AtLine(const std::string& file, int32_t line) {
    return file + ":" + std::to_string(line);
}

// A list stops being one of numbers alone.
void Unpack(Value& list) {
    for (const double number : list.numbers) {
        Value item;
        item.kind = Kind::kNumber;
        item.line = list.line;
        item.number = number;
        list.items.push_back(std::move(item));
    }
    list.numbers.clear();
}

class TreeBuilder : public nlohmann::json_sax<nlohmann::json> {
  public:
    TreeBuilder(const std::string& file, const Position& position)
        : file_(file), position_(position) {}

    bool null() override { return Add({}); }
    bool boolean(bool truth) override {
        Value value;
        value.kind = Kind::kTruth;
        value.truth = truth;
        return Add(std::move(value));
    }
    bool number_integer(number_integer_t number) override {
        return AddNumber(static_cast<double>(number));
    }
    bool number_unsigned(number_unsigned_t number) override {
        return AddNumber(static_cast<double>(number));
    }
    bool number_float(number_float_t number, const string_t& /*written*/) override {
        return AddNumber(number);
    }
    bool string(string_t& text) override {
        Value value;
        value.kind = Kind::kText;
        value.text = std::move(text);
        return Add(std::move(value));
    }
    bool binary(binary_t& /*bytes*/) override { return false; }
    bool start_object(size_t /*count*/) override { return Open(Kind::kObject); }
    bool end_object() override { return Close(); }
    bool start_array(size_t /*count*/) override { return Open(Kind::kList); }
    bool end_array() override { return Close(); }
    bool key(string_t& name) override {
        std::vector<std::string>& names = open_.back()->names;
        if (std::find(names.begin(), names.end(), name) != names.end()) {
            throw Failure(AtLine(file_, Line()), "\"" + name + "\" stands here twice");
        }
        names.push_back(name);
        return true;
    }
    bool parse_error(size_t /*place*/, const std::string& /*token*/,
                     const nlohmann::detail::exception& error) override {
        // Behind the parser's own name for itself.
        const std::string_view text = error.what();
        const size_t reason = text.find(": ");
        throw Failure(AtLine(file_, Line()),
                      "no JSON: " + std::string(text.substr(
                                        reason == std::string_view::npos ? 0 : reason + 2)));
    }

    Value root;

  private:
    // A number ends where the character behind it is read.
    int32_t Line() const { return position_.line - (position_.last == '\n' ? 1 : 0); }

    bool AddNumber(double number) {
        if (!open_.empty() && open_.back()->kind == Kind::kList && open_.back()->items.empty()) {
            open_.back()->numbers.push_back(number);
            return true;
        }
        Value value;
        value.kind = Kind::kNumber;
        value.number = number;
        return Add(std::move(value));
    }
    bool Add(Value value) {
        value.line = Line();
        if (open_.empty()) {
            root = std::move(value);
            return true;
        }
        Unpack(*open_.back());
        open_.back()->items.push_back(std::move(value));
        return true;
    }
    bool Open(Kind kind) {
        if (open_.size() == kDeepest) throw Failure(AtLine(file_, Line()), "nested too deeply");
        Value value;
        value.kind = kind;
        Add(std::move(value));
        open_.push_back(open_.empty() ? &root : &open_.back()->items.back());
        return true;
    }
    bool Close() {
        open_.pop_back();
        return true;
    }

    const std::string& file_;
    const Position& position_;
    std::vector<Value*> open_;
};

}  // namespace

Value ParseDocument(const std::string& file, std::string_view text) {
    Position position;
    TreeBuilder builder(file, position);
    nlohmann::json::sax_parse(CountingIterator(text.data(), &position),
                              CountingIterator(text.data() + text.size(), &position), &builder,
                              nlohmann::json::input_format_t::json, true, true);
    return std::move(builder.root);
}

Node Node::operator[](std::string_view name) const {
    const Value& object = *value;
    const auto found = std::find(object.names.begin(), object.names.end(), name);
    if (found == object.names.end()) return {nullptr, path, file};
    return Item(static_cast<size_t>(found - object.names.begin()));
}

Node Node::Item(size_t index) const {
    const Value& whole = *value;
    if (whole.kind == Kind::kList) {
        return {&whole.items[index], path + "[" + std::to_string(index) + "]", file};
    }
    return {&whole.items[index], path + (path.empty() ? "" : ".") + whole.names[index], file};
}

size_t Node::Size() const { return value->items.size() + value->numbers.size(); }

void Node::Fail(const std::string& reason) const {
    throw Failure(AtLine(*file, value->line), (path.empty() ? "" : path + ": ") + reason);
}

std::string_view Nearest(std::string_view name, const std::vector<std::string_view>& names) {
    std::string_view nearest;
    size_t least = std::max<size_t>(2, name.size() / 3) + 1;
    for (const std::string_view other : names) {
        // Edits from the first letters of one to those of the other (Levenshtein).
        std::vector<size_t> row(other.size() + 1);
        std::iota(row.begin(), row.end(), size_t{0});
        for (size_t i = 1; i <= name.size(); ++i) {
            size_t diagonal = std::exchange(row[0], i);
            for (size_t k = 1; k <= other.size(); ++k) {
                const size_t change = diagonal + (name[i - 1] == other[k - 1] ? 0 : 1);
                diagonal = row[k];
                row[k] = std::min({change, row[k] + 1, row[k - 1] + 1});
            }
        }
        if (row.back() < least) {
            least = row.back();
            nearest = other;
        }
    }
    return nearest;
}

}  // namespace corvantis::rig
