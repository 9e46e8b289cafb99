// Reading through a window: narrow where the reading jumps, wide where it goes on.
#include "bytes/FileView.h"

#include <algorithm>
#include <cstring>

#include "ITCFileIO/ByteOrder.h"

namespace corvantis::reading {
namespace {

constexpr int64_t kNarrow = 2048;      // a header and its records, mostly
constexpr int64_t kSmallEpoch = 8192;  // read at once; of longer ones the samples go elsewhere

}  // namespace

FileView::FileView(const ByteSource& source, const Snapshot& snapshot)
    : source_(source), header_(snapshot.header), size_(snapshot.size), windowReach_(kNarrow) {}

FileView::~FileView() = default;

void FileView::Fail(ReadFault fault, int64_t offset) const {
    if (fault_ != ReadFault::kNone) return;
    fault_ = fault;
    faultOffset_ = offset;
    size_ = 0;
    windowSize_ = 0;
}

bool FileView::Fetch(int64_t position, uint8_t* bytes, int64_t count) const {
    for (int64_t done = 0; done < count;) {
        const int64_t read = source_.source.read(source_.source.context, position + done,
                                                 bytes + done, count - done);
        if (read <= 0 || read > count - done) {
            Fail(read == 0 ? ReadFault::kShort : ReadFault::kFailed, position + done);
            return false;
        }
        done += read;
    }
    return true;
}

int64_t FileView::NextData(int64_t position) const {
    if (source_.nextData == nullptr || position >= size_) return position;
    return std::min(source_.nextData(source_.source.context, position), size_);
}

bool FileView::IsInWindow(int64_t position, int64_t count) const {
    return position >= windowStart_ && position + count <= windowStart_ + windowSize_;
}

void FileView::MoveWindow(int64_t position, int64_t count) const {
    const bool goesOn = position >= windowStart_ && position <= windowStart_ + windowSize_;
    windowReach_ = goesOn && windowSize_ > 0 ? std::min(4 * windowReach_, kLargestPeek) : kNarrow;
    const int64_t size = std::min(std::max(windowReach_, count), size_ - position);
    if (static_cast<int64_t>(window_.size()) < size) window_.resize(static_cast<size_t>(size));
    windowStart_ = position;
    windowSize_ = 0;
    if (Fetch(position, window_.data(), size)) windowSize_ = size;
}

std::span<const uint8_t> FileView::Peek(int64_t position, int64_t count) const {
    if (position < 0 || position >= size_) return {};
    count = std::clamp<int64_t>(count, 0, std::min(kLargestPeek, size_ - position));
    if (!IsInWindow(position, count)) MoveWindow(position, count);
    if (!IsInWindow(position, count)) return {};
    return {window_.data() + (position - windowStart_), static_cast<size_t>(count)};
}

void FileView::Expect(int64_t position, int64_t count) const {
    if (count > 0 && count <= kSmallEpoch) Peek(position, count);
}

bool FileView::Read(int64_t position, void* bytes, int64_t count) const {
    if (position < 0 || count < 0 || position > size_ || count > size_ - position) return false;
    auto* to = static_cast<uint8_t*>(bytes);
    if (!IsInWindow(position, count)) return Fetch(position, to, count);
    if (count > 0) std::memcpy(to, window_.data() + (position - windowStart_), size_t(count));
    return true;
}

std::vector<uint8_t> FileView::Bytes(int64_t position, int64_t count) const {
    const int64_t there = position < 0 ? 0 : std::clamp<int64_t>(size_ - position, 0, count);
    std::vector<uint8_t> bytes(static_cast<size_t>(there));
    if (!Read(position, bytes.data(), there)) bytes.clear();
    return bytes;
}

std::vector<uint32_t> FileView::Positions(int64_t position, int64_t count) const {
    const std::vector<uint8_t> bytes = Bytes(position, kPositionSize * std::max<int64_t>(count, 0));
    std::vector<uint32_t> positions(bytes.size() / kPositionSize);
    for (size_t i = 0; i < positions.size(); ++i) {
        LoadBigEndian(bytes.data() + kPositionSize * i, positions[i]);
    }
    return positions;
}

}  // namespace corvantis::reading
