// Telling what has been opened: a recording whose table can be believed, one that has to be walked,
// or something else.
#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "recording/Recording.h"
#include "text/Words.h"

namespace corvantis::reading {
namespace {

struct Signature {
    std::string_view bytes;
    const char* name;
};

constexpr Signature kSignatures[] = {
    {"\x89PNG", "a PNG picture"},
    {"\xFF\xD8\xFF", "a JPEG picture"},
    {"GIF8", "a GIF picture"},
    {"II*", "a TIFF picture"},
    {"%PDF", "a PDF document"},
    {"PK\x03\x04", "a ZIP archive or an office document"},
    {"\x89HDF", "an HDF5 file"},
    {"\x1F\x8B", "a gzip archive"},
    {"\x93NUMPY", "a NumPy array"},
    {"\x7F"
     "ELF",
     "a program"},
    {"MATLAB", "a MATLAB file"},
    {"RIFF", "a RIFF sound or film"},
    {"<?xml", "an XML document"},
    {"SQLite", "an SQLite database"},
};

bool IsText(std::span<const uint8_t> bytes) {
    return std::all_of(bytes.begin(), bytes.end(), [](uint8_t byte) {
        return byte >= 0x20 || byte == '\n' || byte == '\r' || byte == '\t';
    });
}

std::string LooksLike(std::span<const uint8_t> bytes) {
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    for (const Signature& signature : kSignatures) {
        if (text.starts_with(signature.bytes)) return Say("looks like ", signature.name);
    }
    if (bytes.empty()) return "is empty";
    if (IsText(bytes)) return "looks like a text";
    return Say("begins with neither the header of a recording nor one of a known kind");
}

// Every writer of the format leaves these bytes zero; hardly any other file has zeros in all.
bool HasPadding(std::span<const uint8_t> header) {
    const auto isZero = [&](size_t offset, size_t size) {
        const auto run = header.subspan(offset, size);
        return std::all_of(run.begin(), run.end(), [](uint8_t byte) { return byte == 0; });
    };
    constexpr size_t kBehindLast = offsetof(ITCFileHeader, fileLongB) + sizeof(int32_t);
    return isZero(1, offsetof(ITCFileHeader, fileLongA) - 1) &&
           isZero(kBehindLast, sizeof(ITCFileHeader) - kBehindLast);
}

constexpr int64_t kStart = 64;  // as much as tells a text

}  // namespace

// Nothing of a recording is refused: one that lost its header has epochs, one without has a header.
bool Contents::Refuse(const FileView& view, const Reporter& reporter) const {
    const std::span<const uint8_t> bytes = view.Peek(0, kFirstEpoch);
    if (view.Fault() != ReadFault::kNone) return false;
    const std::span<const uint8_t> start = bytes.first(std::min<size_t>(bytes.size(), kStart));
    if (static_cast<int64_t>(bytes.size()) < kFirstEpoch) {
        reporter.Report(CORVANTIS_NOT_A_RECORDING, 0,
                        Say("has ", bytes.size(), " bytes, fewer than the ", kFirstEpoch,
                            " of a file header: nothing was recorded, or this is no recording; it ",
                            LooksLike(start)));
        return true;
    }
    const bool isTooNew = snapshot_.header.version > ITC_FILE_VERSION;
    if (isTooNew && HasPadding(bytes)) {
        reporter.Report(CORVANTIS_VERSION_TOO_NEW, 0,
                        Say("format version ", int32_t{snapshot_.header.version}, " is newer than ",
                            int32_t{ITC_FILE_VERSION}));
        return true;
    }
    const bool hasEpochs =
        walked_ && (!walked_->survey.epochs.empty() || walked_->survey.unfinished);
    if (!isTooNew && (isByTable_ || hasEpochs || HasPadding(bytes))) return false;
    reporter.Report(CORVANTIS_NOT_A_RECORDING, 0, Say("is no recording: it ", LooksLike(start)));
    return true;
}

// Whether the header has room for the table that it tells of.
bool Contents::TakeTable(const FileView& view) {
    const int64_t count = snapshot_.header.numEpochs;
    const int64_t place = count == 0 ? kFirstEpoch : view.RecordedTablePosition();
    const int64_t most = (place - kFirstEpoch) / kEpochHeaderSize;
    if (count < 0 || place < kFirstEpoch || count > most) return false;
    if (place > view.Size() - kPositionSize * count) return false;
    count_ = count;
    tablePosition_ = place;
    starts_ = std::make_unique<Remembered>(count);
    digests_ = std::make_unique<Remembered>(count);
    return true;
}

bool Contents::IsSoundByTable(const FileView& view) {
    if (!TakeTable(view)) return false;
    const int64_t count = count_;
    if (count == 0) return view.Size() == kFirstEpoch;
    EpochReading reading;
    return FindByTable(view, 0, Depth::kHeader, reading) && reading.place.start == kFirstEpoch &&
           FindByTable(view, count - 1, Depth::kHeader, reading);
}

bool Contents::AddByWalking(const Reporter& reporter) {
    const Walked* walked = Walk(reporter);
    if (walked == nullptr) return false;
    count_ = walked->numbers;
    tablePosition_ = walked->survey.tablePosition;
    starts_.reset();
    return true;
}

std::unique_ptr<Contents> Contents::Examine(const ByteSource& source, const std::string& name,
                                            const Snapshot& snapshot, const Reporter& reporter) {
    std::unique_ptr<Contents> contents(new Contents(source, name, snapshot));
    const FileView view = contents->View();
    const bool mayBeOurs =
        snapshot.size >= kFirstEpoch && snapshot.header.version <= ITC_FILE_VERSION;
    contents->isByTable_ = mayBeOurs && contents->IsSoundByTable(view);
    const bool isWalked = !mayBeOurs || contents->isByTable_ || contents->AddByWalking(reporter);
    if (!isWalked) return nullptr;
    if (contents->Refuse(view, reporter)) return nullptr;
    if (view.Fault() == ReadFault::kNone) return contents;
    reporter.ReportFault(view);
    return nullptr;
}

}  // namespace corvantis::reading
