// Comparing bytes of a file with a table of positions.
#include "survey/PositionTable.h"

#include <algorithm>

namespace corvantis::reading {
namespace {

constexpr int64_t kTablePiece = 64;

}  // namespace

// In pieces, up to the first value that no table has there: asked for at every epoch, it may not
// read what lies behind.
bool IsTable(const FileView& file, int64_t position, int64_t entries) {
    if (entries == 0) return position == file.Size();
    auto last = static_cast<uint32_t>(kFirstEpoch);
    for (int64_t done = 0; done < entries;) {
        const std::vector<uint32_t> piece =
            file.Positions(position + kPositionSize * done, std::min(entries - done, kTablePiece));
        if (piece.empty() || piece.front() < last || piece.back() > file.Size()) return false;
        if (done == 0 && piece.front() != last) return false;
        if (!std::is_sorted(piece.begin(), piece.end())) return false;
        last = piece.back();
        done += static_cast<int64_t>(piece.size());
    }
    return true;
}

bool IsExactTable(const FileView& file, int64_t position, const std::vector<EpochPlace>& epochs) {
    if (epochs.empty()) return position == file.Size();
    int64_t overcounted = 0;
    std::vector<uint32_t> piece;
    for (size_t i = 0; i < epochs.size(); ++i) {
        const size_t k = i % kTablePiece;
        if (k == 0) {
            piece = file.Positions(position + kPositionSize * static_cast<int64_t>(i), kTablePiece);
        }
        if (k >= piece.size()) return false;
        const int64_t start = epochs[i].start;
        if (piece[k] != start && piece[k] != start + overcounted) return false;
        overcounted += epochs[i].overcounted;
    }
    return true;
}

std::vector<uint32_t> RecordedPositions(const std::vector<EpochPlace>& epochs) {
    std::vector<uint32_t> positions;
    int64_t overcounted = 0;
    for (const EpochPlace& epoch : epochs) {
        positions.push_back(static_cast<uint32_t>(epoch.start + overcounted));
        overcounted += epoch.overcounted;
    }
    return positions;
}

}  // namespace corvantis::reading
