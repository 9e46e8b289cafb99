// What every exported function does alike: nothing is thrown across, and nothing that is missing is
// touched.
#pragma once

#include <new>

#include "recording/Recording.h"
#include "text/Words.h"

namespace corvantis::reading {

inline Reporter ReporterOf(const CorvantisRecording* recording, CorvantisProblem* problem) {
    return {recording == nullptr ? "" : std::string_view(recording->name), problem};
}

template <class Operation>
int32_t Guarded([[maybe_unused]] const Reporter& reporter, Operation operation) {
#if defined(__cpp_exceptions)
    try {
        return operation();
    } catch (...) {  // the standard library throws nothing else here
        return reporter.Report(CORVANTIS_OUT_OF_MEMORY, -1, "out of memory");
    }
#else
    return operation();
#endif
}

// operation(contents, reporter)
template <class Operation>
int32_t WithContents(const CorvantisRecording* recording, CorvantisProblem* problem,
                     Operation operation) {
    const Reporter reporter = ReporterOf(recording, problem);
    if (recording == nullptr) {
        return reporter.Report(CORVANTIS_BAD_ARGUMENT, -1, "no recording is given");
    }
    return Guarded(reporter, [&] { return operation(*recording->contents, reporter); });
}

// operation(contents, view, reading, reporter), of an epoch that could be read
template <class Operation>
int32_t WithEpoch(const CorvantisRecording* recording, int64_t epoch, Depth depth,
                  CorvantisProblem* problem, Operation operation) {
    return WithContents(
        recording, problem, [&](const Contents& contents, const Reporter& reporter) -> int32_t {
            const FileView view = contents.View();
            EpochReading reading;
            const int32_t result = contents.Find(view, epoch, depth, reading, reporter);
            if (result != CORVANTIS_SUCCESS) return result;
            return operation(contents, view, reading, reporter);
        });
}

inline int32_t CheckEpochs(const Contents& contents, int64_t first, int64_t epochs,
                           const Reporter& reporter) {
    if (first >= 0 && epochs >= 0 && first <= contents.Count() - epochs) return CORVANTIS_SUCCESS;
    return reporter.Report(CORVANTIS_BAD_ARGUMENT, -1,
                           Say("epochs ", first, " and ", epochs, " on of ", contents.Count()));
}

// For each of a run of epochs read(view, reading, index), or clear(index) where it is damaged or
// read says that it has not what is wanted (CORVANTIS_BAD_ARGUMENT); without a list of those that
// are missing, the first one ends the run.
template <class Read, class Clear>
int32_t ForEachEpoch(const Contents& contents, int64_t first, int64_t epochs, uint8_t* missing,
                     const Reporter& reporter, Read read, Clear clear) {
    if (const int32_t wrong = CheckEpochs(contents, first, epochs, reporter)) return wrong;
    const FileView view = contents.View();
    const Reporter quiet("", nullptr);
    EpochReading reading;
    for (int64_t i = 0; i < epochs; ++i) {
        const auto attempt = [&](const Reporter& to) {
            const int32_t result = contents.Find(view, first + i, Depth::kHeader, reading, to);
            return result == CORVANTIS_SUCCESS ? read(view, reading, i, to) : result;
        };
        const int32_t result = attempt(missing == nullptr ? reporter : quiet);
        const bool isMissing = result == CORVANTIS_DAMAGED || result == CORVANTIS_BAD_ARGUMENT;
        if (missing != nullptr && isMissing) clear(i);
        if (missing != nullptr) missing[i] = isMissing ? 1 : 0;
        if (result == CORVANTIS_SUCCESS || (missing != nullptr && isMissing)) continue;
        return missing == nullptr ? result : attempt(reporter);
    }
    return CORVANTIS_SUCCESS;
}

inline int32_t Missing(const Reporter& reporter) {
    return reporter.Report(CORVANTIS_BAD_ARGUMENT, -1, "a pointer is null");
}

}  // namespace corvantis::reading
