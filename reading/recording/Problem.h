// Saying what went wrong, with the file's name and the place.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "bytes/FileView.h"
#include "epochs/EpochLayout.h"

namespace corvantis::reading {

// Knows the file, and where the caller wants to be told; that may be nowhere.
class Reporter {
  public:
    Reporter(std::string_view name, CorvantisProblem* problem) : name_(name), problem_(problem) {}
    // Whether nobody listens.
    bool IsQuiet() const { return problem_ == nullptr; }
    // Gives back the code.
    int32_t Report(CorvantisResult code, int64_t offset, std::string_view text) const;
    int32_t ReportEpoch(CorvantisResult code, int64_t number, int64_t offset,
                        std::string_view text) const;
    // Of a view that has failed.
    int32_t ReportFault(const FileView& view) const;

  private:
    int32_t Say(CorvantisResult code, int64_t offset, std::string_view place,
                std::string_view reason) const;

    std::string_view name_;
    CorvantisProblem* problem_;
};

std::string InWords(const Mismatch& mismatch);

}  // namespace corvantis::reading
