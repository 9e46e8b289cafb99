// What every exported function does alike: nothing is thrown across, and nothing that is missing is
// touched.
#pragma once

#include <new>

#include "recording/Recording.h"

namespace corvantis::reading {

inline Reporter ReporterOf(const CorvantisRecording* recording, CorvantisProblem* problem) {
    return {recording == nullptr ? "" : std::string_view(recording->name), problem};
}

template <class Operation>
int32_t Guarded(const Reporter& reporter, Operation operation) {
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

inline int32_t Missing(const Reporter& reporter) {
    return reporter.Report(CORVANTIS_BAD_ARGUMENT, -1, "a pointer is null");
}

}  // namespace corvantis::reading
