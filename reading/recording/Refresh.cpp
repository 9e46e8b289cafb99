// Going on from one moment of a recording to a later one.
#include <algorithm>

#include "recording/Recording.h"

namespace corvantis::reading {

// While a save is under way, header and bytes do not agree, and half of the header may be new. What
// lies in front of the place that it has for the table was saved before and is complete.
void Contents::LeaveOutSave(const Contents& earlier) {
    if (isByTable_ || !walked_) return;
    const int64_t recorded = static_cast<uint32_t>(snapshot_.header.epochTablePosition);
    const int64_t place = std::max(earlier.tablePosition_, recorded);
    std::vector<EpochPlace>& epochs = walked_->survey.epochs;
    while (!epochs.empty() && epochs.back().end > place) epochs.pop_back();
    walked_->survey.unfinished.reset();
    const int64_t known = epochs.empty() ? 0 : epochs.back().number + 1;
    walked_->numbers = count_ = std::max(known, earlier.count_);
    tablePosition_ = epochs.empty() ? kFirstEpoch : epochs.back().end;
}

// The last epoch that was there before stands for all: whoever replaced one in front of it had to
// write them all anew.
bool Contents::Continue(const Contents& earlier, const Reporter& reporter) {
    if (earlier.count_ == 0) return true;
    if (count_ < earlier.count_) return false;
    const FileView view = View(), before = earlier.View();
    const Reporter quiet("", nullptr);
    for (const int64_t number : {int64_t{0}, earlier.count_ - 1}) {
        EpochReading then, now;
        // Of the earlier moment what was remembered, for its table may be gone.
        const int32_t was = earlier.Find(before, number, Depth::kHeader, then, quiet);
        const int32_t is = Find(view, number, Depth::kHeader, now, reporter);
        if (was == CORVANTIS_CHANGED) return false;
        if (was == CORVANTIS_DAMAGED) continue;
        if (is != CORVANTIS_SUCCESS || now.place.start != then.place.start) return false;
    }
    if (!isByTable_ || !earlier.isByTable_) return true;
    for (int64_t i = 0; i < earlier.count_; ++i) digests_->Set(i, earlier.digests_->Get(i));
    return true;
}

}  // namespace corvantis::reading
