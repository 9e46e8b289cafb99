// Opening, refreshing and closing recordings.
#include <utility>

#include "ITCFileIO/RecordCodec.h"
#include "bytes/FileSource.h"
#include "interface/Boundary.h"
#include "text/Words.h"

namespace corvantis::reading {
namespace {

constexpr int64_t kLargestFile = int64_t{1} << 40;  // far beyond what a table's positions reach

int32_t TakeSize(const ByteSource& source, const Reporter& reporter, Snapshot& snapshot) {
    const int64_t size = source.source.size(source.source.context);
    if (size < 0) return reporter.Report(CORVANTIS_FILE_ERROR, -1, "its size cannot be told");
    snapshot.size = std::min(size, kLargestFile);
    return CORVANTIS_SUCCESS;
}

// The header may be of a save under way, in part old and in part new; who examines it will see. A
// save writes the header last, so the size that belongs to it is the one behind its reading.
int32_t TakeSnapshot(const ByteSource& source, const Reporter& reporter, Snapshot& snapshot) {
    Snapshot plain;
    const int32_t result = TakeSize(source, reporter, plain);
    if (result != CORVANTIS_SUCCESS) return result;
    const FileView view(source, plain);
    EncodedRecord<ITCFileHeader> bytes = {};
    if (plain.size >= kFirstEpoch && !view.Read(0, bytes.data(), kFirstEpoch)) {
        return reporter.ReportFault(view);
    }
    Decode(bytes, snapshot.header);
    return TakeSize(source, reporter, snapshot);
}

// By what is known from before, or null.
int32_t Fill(CorvantisRecording& recording, const Known* known, CorvantisProblem* problem) {
    CorvantisProblem said = {CORVANTIS_FILE_ERROR, 0, -1, {}};
    const Reporter reporter(recording.name, &said);
    Snapshot snapshot;
    int32_t result = TakeSnapshot(recording.source, reporter, snapshot);
    if (result == CORVANTIS_SUCCESS) {
        recording.contents =
            known == nullptr
                ? Contents::Examine(recording.source, recording.name, snapshot, reporter)
                : Contents::Recall(recording.source, recording.name, snapshot, *known, reporter);
        if (!recording.contents) result = said.code;
    }
    if (result != CORVANTIS_SUCCESS && problem != nullptr) *problem = said;
    return result;
}

int32_t Open(std::unique_ptr<CorvantisRecording> recording, const Known* known,
             CorvantisRecording** opened, CorvantisProblem* problem) {
    const int32_t result = Fill(*recording, known, problem);
    if (result == CORVANTIS_SUCCESS) *opened = recording.release();
    return result;
}

int32_t OpenPath(const char* path, const Known* known, CorvantisRecording** recording,
                 CorvantisProblem* problem) {
    const Reporter reporter(path == nullptr ? "" : path, problem);
    if (path == nullptr || recording == nullptr) return Missing(reporter);
    *recording = nullptr;
    return Guarded(reporter, [&]() -> int32_t {
        auto opened = std::make_unique<CorvantisRecording>();
        opened->name = path;
        const OpenedFile file = OpenFile(path);
        if (!file.isOpen) return reporter.Report(CORVANTIS_FILE_ERROR, -1, file.refusal);
        opened->source = file.source;
        return Open(std::move(opened), known, recording, problem);
    });
}

int32_t OpenSource(const CorvantisSource* source, const char* name, const Known* known,
                   CorvantisRecording** recording, CorvantisProblem* problem) {
    const Reporter reporter(name == nullptr ? "" : name, problem);
    const bool isWhole = source != nullptr && source->size != nullptr && source->read != nullptr;
    if (!isWhole || name == nullptr || recording == nullptr) return Missing(reporter);
    *recording = nullptr;
    return Guarded(reporter, [&]() -> int32_t {
        auto opened = std::make_unique<CorvantisRecording>();
        opened->name = name;
        opened->source.source = *source;
        return Open(std::move(opened), known, recording, problem);
    });
}

bool IsUnchanged(const Snapshot& a, const Snapshot& b) {
    return a.size == b.size && a.header.numEpochs == b.header.numEpochs &&
           a.header.epochTablePosition == b.header.epochTablePosition;
}

int32_t Refresh(CorvantisRecording& recording, const Reporter& reporter) {
    const Contents& before = *recording.contents;
    Snapshot now;
    const int32_t result = TakeSnapshot(recording.source, reporter, now);
    if (result != CORVANTIS_SUCCESS) return result;
    if (IsUnchanged(now, before.Moment())) return CORVANTIS_SUCCESS;
    const Reporter quiet("", nullptr);
    auto next = Contents::Examine(recording.source, recording.name, now, quiet);
    const bool isCut = now.size < before.TablePosition();
    if (next) next->LeaveOutSave(before);
    // Of a save that has only begun there is nothing to show yet.
    if (!isCut && (!next || next->Count() < before.Count())) return CORVANTIS_SUCCESS;
    if (isCut || !next->Continue(before, quiet)) {
        return reporter.Report(CORVANTIS_CHANGED, -1,
                               "found another recording than was opened under this name");
    }
    recording.contents = std::move(next);
    return CORVANTIS_SUCCESS;
}

}  // namespace
}  // namespace corvantis::reading

using namespace corvantis::reading;

int32_t CorvantisOpen(const char* path, CorvantisRecording** recording, CorvantisProblem* problem) {
    return OpenPath(path, nullptr, recording, problem);
}

int32_t CorvantisOpenSource(const CorvantisSource* source, const char* name,
                            CorvantisRecording** recording, CorvantisProblem* problem) {
    return OpenSource(source, name, nullptr, recording, problem);
}

int32_t CorvantisOpenKnown(const char* name, const CorvantisSource* source,
                           const CorvantisRecordingInfo* known, const CorvantisPlace* places,
                           int64_t count, CorvantisRecording** recording,
                           CorvantisProblem* problem) {
    const Reporter reporter(name == nullptr ? "" : name, problem);
    if (known == nullptr || count < 0 || (count > 0 && places == nullptr)) return Missing(reporter);
    const Known all = {*known, {places, static_cast<size_t>(count)}};
    return source == nullptr ? OpenPath(name, &all, recording, problem)
                             : OpenSource(source, name, &all, recording, problem);
}

int32_t CorvantisRefresh(CorvantisRecording* recording, CorvantisProblem* problem) {
    const Reporter reporter = ReporterOf(recording, problem);
    if (recording == nullptr) return Missing(reporter);
    return Guarded(reporter, [&] { return Refresh(*recording, reporter); });
}

void CorvantisClose(CorvantisRecording* recording) { delete recording; }

int32_t CorvantisInfo(const CorvantisRecording* recording, CorvantisRecordingInfo* info) {
    if (recording == nullptr || info == nullptr) return CORVANTIS_BAD_ARGUMENT;
    const Contents& contents = *recording->contents;
    *info = {contents.Moment().size,   contents.Count(),
             contents.TablePosition(), contents.Moment().header.version,
             contents.Found(),         DigestOf(contents.Moment().header)};
    return CORVANTIS_SUCCESS;
}

int64_t CorvantisEpochs(const CorvantisRecording* recording) {
    return recording == nullptr ? 0 : recording->contents->Count();
}

int32_t CorvantisFindings(const CorvantisRecording* recording, int64_t* count,
                          CorvantisProblem* problem) {
    return WithContents(recording, problem,
                        [&](const Contents& contents, const Reporter& reporter) -> int32_t {
                            if (count == nullptr) return Missing(reporter);
                            const Walked* walked = contents.Walk(reporter);
                            if (walked == nullptr) return CORVANTIS_FILE_ERROR;
                            *count = static_cast<int64_t>(walked->findings.size());
                            return CORVANTIS_SUCCESS;
                        });
}

int32_t CorvantisGetFinding(const CorvantisRecording* recording, int64_t index,
                            CorvantisFinding* finding) {
    return WithContents(
        recording, nullptr, [&](const Contents& contents, const Reporter& reporter) -> int32_t {
            const Walked* walked = finding == nullptr ? nullptr : contents.Walk(reporter);
            if (walked == nullptr) return CORVANTIS_BAD_ARGUMENT;
            const auto& findings = walked->findings;
            if (index < 0 || index >= static_cast<int64_t>(findings.size())) {
                return CORVANTIS_BAD_ARGUMENT;
            }
            const Finding& from = findings[static_cast<size_t>(index)];
            *finding = {from.offset, from.epoch, from.weight, {}, {}, {}};
            StoreText(from.place, finding->place);
            StoreText(from.found, finding->found);
            StoreText(from.expected, finding->expected);
            return CORVANTIS_SUCCESS;
        });
}
