// A JSON text with comments as a tree, each value with the line that it stands in.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace corvantis::rig {

enum class Kind : uint8_t { kNull, kTruth, kNumber, kText, kList, kObject };

struct Value {
    Kind kind = Kind::kNull;
    bool truth = false;
    int32_t line = 0;
    double number = 0;
    std::string text;
    std::vector<Value> items;        // of a list, or the values of an object
    std::vector<std::string> names;  // of an object, one for each item
    std::vector<double> numbers;     // of a list of numbers alone, which then has no items
};

// Throws a Failure that names the file and the line, also for a name that an object has twice.
Value ParseDocument(const std::string& file, std::string_view text);

// A value and the way to it, for messages.
struct Node {
    const Value* value = nullptr;
    std::string path;  // such as epochs[2].stimuli.cell.amplitude
    const std::string* file = nullptr;

    // Of an object; a node without a value where there is none of that name.
    Node operator[](std::string_view name) const;
    // Of a list, or of an object by the place of its field.
    Node Item(size_t index) const;
    size_t Size() const;
    explicit operator bool() const { return value != nullptr; }
    Kind GetKind() const { return value->kind; }

    // Throws a Failure: file, line, path and the reason.
    [[noreturn]] void Fail(const std::string& reason) const;
};

// The one of the names that is most like this one; empty if none is.
std::string_view Nearest(std::string_view name, const std::vector<std::string_view>& names);

}  // namespace corvantis::rig
