// Finding the next epoch where a damaged one has led the walk astray.
#pragma once

#include <cstdint>
#include <optional>

#include "bytes/FileView.h"

namespace corvantis::reading {

// The first place from `from` on and before `until` that looks like an epoch throughout: the bytes
// that every writer of the format leaves zero are zero, its numbers are possible, and its end is
// the start of another such epoch, the table or the end of the file. All epochs begin at even
// offsets.
std::optional<int64_t> FindEpoch(const FileView& file, int64_t from, int64_t until);

// Where the epochs end that follow each other from there, each as sound as a found one.
int64_t EndOfSoundEpochs(const FileView& file, int64_t position, int64_t until);

}  // namespace corvantis::reading
