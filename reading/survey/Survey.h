// The walk over the whole container as it really lies in the file.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "bytes/FileView.h"
#include "epochs/EpochLayout.h"

namespace corvantis::reading {

// Bytes that belong to no complete epoch.
struct Stretch {
    int64_t begin = 0;
    int64_t end = 0;
    Mismatch mismatch;
    std::optional<int64_t> number = std::nullopt;  // of a damaged epoch that the table leads to
};

// What can be read in two ways, or is odd though it can be read.
struct Remark {
    int64_t offset = 0;
    int64_t number = 0;  // of the epoch
    Mismatch mismatch;
    bool isDoubt = false;  // else an epoch of unknown type, which is no fault
};

// An epoch at the end of the file that is not, or not provably, complete.
struct UnfinishedEpoch {
    EpochPlace place;
    int32_t wholePoints = 0;  // that can be had from it
    Mismatch mismatch;
};

struct Survey {
    std::vector<EpochPlace> epochs;  // all complete ones, in file order
    int64_t numbers = 0;             // all epochs' numbers are below this, damaged ones' too
    std::vector<Stretch> strays;
    std::vector<size_t> damaged;  // strays with a number, in the order of these
    std::vector<Remark> remarks;
    std::optional<UnfinishedEpoch> unfinished;
    // Where the walk ended, and where the table is or would be.
    int64_t tablePosition = 0;
    // A whole table is there, even if with wrong values, so the last save got at least that far.
    bool tableIsWhole = false;
    int64_t tableEntries = 0;
};

// Where the file's bytes failed to come, the view says so, and the survey is worth nothing.
Survey SurveyFile(const FileView& file);

// Nothing if that epoch is not there, or damaged.
const EpochPlace* FindNumber(const Survey& survey, int64_t number);

// The first number from there on that has an epoch, or one beyond all numbers.
int64_t NextNumber(const Survey& survey, int64_t number);

// Where it was or should have been; -1 if that is not known.
int64_t PlaceOf(const Survey& survey, int64_t number);

// Why it is not there.
std::string WhyMissing(const Survey& survey, int64_t number);

// How many epochs the file should hold: beyond those that are there, what the header of a truncated
// file counts.
int64_t NumbersOf(const FileView& file, const Survey& survey);

}  // namespace corvantis::reading
