// Names of tables out of the output's name.
#include "commands/ExportTarget.h"

#include <fmt/core.h>

#include <algorithm>
#include <filesystem>

#include "files/Failure.h"
#include "files/Path.h"

namespace corvantis::tool {
namespace {

namespace fs = std::filesystem;

// Digits as for the last epoch of the file, so that names sort.
std::string Numbered(const std::string& stem, int64_t epoch, int64_t epochs,
                     const std::string& ending) {
    const size_t digits = std::to_string(epochs - 1).size();
    return fmt::format("{}-{:0{}}{}", stem, epoch, digits, ending);
}

std::string PathInFolder(const ExportOptions& options, const FoundFile& found, int64_t epoch,
                         int64_t epochs) {
    const fs::path folder = PathOf(options.output) / PathOf(found.relative);
    std::error_code error;
    fs::create_directories(folder, error);
    if (error) throw Failure(TextOf(folder), ReasonOf(error));
    return TextOf(folder / Numbered("epoch", epoch, epochs, fmt::format(".{}", FormatOf(options))));
}

}  // namespace

bool IsStandardOutput(const ExportOptions& options) {
    return options.output.empty() || options.output == "-";
}

bool IsFolderOutput(const ExportOptions& options) {
    if (IsStandardOutput(options)) return false;
    return TextOf(PathOf(options.output)).ends_with('/') || IsFolder(options.output);
}

std::string FormatOf(const ExportOptions& options) {
    if (!options.format.empty()) return options.format;
    if (IsStandardOutput(options) || IsFolderOutput(options)) return "csv";
    std::string ending = TextOf(PathOf(options.output).extension());
    std::transform(ending.begin(), ending.end(), ending.begin(), [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    });
    if (ending == ".csv" || ending == ".npy") return ending.substr(1);
    throw Failure(options.output,
                  "its ending names no format; end it in .csv or .npy, or say "
                  "which with --format");
}

std::string TablePath(const ExportOptions& options, const FoundFile& found, int64_t epoch,
                      int64_t epochs) {
    if (IsFolderOutput(options)) return PathInFolder(options, found, epoch, epochs);
    const fs::path whole = PathOf(options.output);
    const std::string name =
        Numbered(TextOf(whole.stem()), epoch, epochs, TextOf(whole.extension()));
    return TextOf(whole.parent_path() / PathOf(name));
}

}  // namespace corvantis::tool
