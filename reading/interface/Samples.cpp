// Acquired samples and conductances, by ranges, into the caller's memory.
#include <algorithm>
#include <array>
#include <utility>
#include <vector>

#include "ITCFileIO/ArrayCodec.h"
#include "interface/Boundary.h"
#include "interface/Target.h"
#include "text/Words.h"
#include "units/Scale.h"

namespace corvantis::reading {
namespace {

constexpr int64_t kRun = 8192;  // counts on their way

// Of the chosen entries, a run of points at a time: store(run, entries, point, points).
template <class Store>
bool ReadRuns(const FileView& view, const EpochPlace& place, int64_t first, int64_t count,
              Store store) {
    if (place.entries == 0) return true;
    std::array<int16_t, kRun> run;
    const int64_t points = kRun / place.entries;
    for (int64_t done = 0; done < count; done += points) {
        const int64_t size = std::min(points, count - done) * place.entries;
        const int64_t offset = place.samples + int64_t{2} * (first + done) * place.entries;
        if (!view.Read(offset, run.data(), int64_t{2} * size)) return false;
        DecodeInPlace(run.data(), static_cast<size_t>(size));
        store(std::span<const int16_t>(run.data(), static_cast<size_t>(size)), done);
    }
    return true;
}

// Whole rows without gaps go from the file to where they belong.
bool ReadRows(const FileView& view, const EpochPlace& place, const Target<int16_t>& target) {
    const int64_t size = target.count * place.entries;
    const int64_t offset = place.samples + int64_t{2} * target.first * place.entries;
    if (!view.Read(offset, target.values, int64_t{2} * size)) return false;
    DecodeInPlace(target.values, static_cast<size_t>(size));
    return true;
}

bool ReadCounts(const FileView& view, const EpochPlace& place, const Target<int16_t>& target) {
    const Entries chosen = Chosen(target.entry, place.entries);
    if (chosen.count == place.entries && target.stride == place.entries) {
        return ReadRows(view, place, target);
    }
    return ReadRuns(view, place, target.first, target.count, [&](auto run, int64_t point) {
        int16_t* to = target.values + point * target.stride;
        for (size_t i = 0; i < run.size(); i += static_cast<size_t>(place.entries)) {
            std::copy_n(run.data() + i + chosen.first, chosen.count, to);
            to += target.stride;
        }
    });
}

struct ManyCounts {
    int32_t entry;
    int64_t first;
    int64_t count;
    int16_t* values;
    int64_t stride;
    int32_t width = 0;  // values a point, as the first epoch has them
};

int32_t ReadManyCounts(const Contents& contents, int64_t first, int64_t epochs, ManyCounts many,
                       uint8_t* missing, const Reporter& reporter) {
    const auto clear = [&](int64_t i) {
        std::fill_n(many.values + i * many.stride, many.count * many.width, int16_t{0});
    };
    const auto read = [&](const FileView& view, const EpochReading& reading, int64_t i,
                          const Reporter& to) -> int32_t {
        const EpochPlace& place = reading.place;
        const int32_t width = Chosen(many.entry, place.entries).count;
        if (many.width == 0) {  // known from here on, also for those before
            many.width = width;
            for (int64_t before = 0; before < i; ++before) clear(before);
        }
        Target<int16_t> target = {many.entry, many.first, many.count, many.values + i * many.stride,
                                  0};
        if (width != many.width) target.entry = place.entries;  // which is not there
        const int32_t result = CheckTarget(place, target, to);
        if (result != CORVANTIS_SUCCESS) return result;
        return ReadCounts(view, place, target) ? CORVANTIS_SUCCESS : to.ReportFault(view);
    };
    return ForEachEpoch(contents, first, epochs, missing, reporter, read, clear);
}

using Scales = std::vector<Scale>;

Scales ScalesOf(const Contents& contents, const EpochReading& reading, int32_t direction) {
    Scales scales;
    for (int32_t entry = 0; entry < reading.place.entries; ++entry) {
        scales.push_back(ScaleOf(contents.Moment().header, reading.content.header,
                                 static_cast<size_t>(entry), direction));
    }
    return scales;
}

// One entry's counts out of a run of all entries', in its units.
void ConvertEntry(std::span<const int16_t> run, size_t entries, size_t entry, const Scale& scale,
                  double* values, int64_t stride) {
    if (entries == 1) return Convert(scale, run, values, stride);
    std::array<int16_t, kRun> counts;
    const size_t points = run.size() / entries;
    for (size_t i = 0; i < points; ++i) counts[i] = run[i * entries + entry];
    Convert(scale, {counts.data(), points}, values, stride);
}

bool ReadValues(const FileView& view, const EpochPlace& place, const Target<double>& target,
                const Scales& scales) {
    const Entries chosen = Chosen(target.entry, place.entries);
    return ReadRuns(view, place, target.first, target.count, [&](auto run, int64_t point) {
        for (int32_t k = 0; k < chosen.count; ++k) {
            const auto entry = static_cast<size_t>(int64_t{chosen.first} + k);
            ConvertEntry(run, static_cast<size_t>(place.entries), entry, scales[entry],
                         target.values + point * target.stride + k, target.stride);
        }
    });
}

// The conductances of one kind lie one after the other.
int32_t ReadConductances(const FileView& view, const EpochReading& reading, int32_t which,
                         const Target<float>& target, const Reporter& reporter) {
    const Stimulus& stimulus = reading.content.stimuli[static_cast<size_t>(target.entry)];
    const EpochPlace& place = reading.place;
    if (stimulus.conductances == 0 || which < 0 || which > CORVANTIS_INHIBITORY) {
        return reporter.ReportEpoch(CORVANTIS_BAD_ARGUMENT, place.number, -1,
                                    Say("has no conductances ", which, " of entry ", target.entry));
    }
    const int64_t point = int64_t{which} * place.points + target.first;
    const int64_t offset = stimulus.conductances + int64_t{4} * point;
    if (!view.Read(offset, target.values, int64_t{4} * target.count)) {
        return reporter.ReportFault(view);
    }
    DecodeInPlace(target.values, static_cast<size_t>(target.count));
    return CORVANTIS_SUCCESS;
}

}  // namespace
}  // namespace corvantis::reading

using namespace corvantis::reading;

int32_t CorvantisCounts(const CorvantisRecording* recording, int64_t epoch, int32_t entry,
                        int64_t first, int64_t count, int16_t* values, int64_t stride,
                        CorvantisProblem* problem) {
    Target<int16_t> target = {entry, first, count, values, stride};
    return WithEpoch(recording, epoch, Depth::kHeader, problem,
                     [&](const Contents&, const FileView& view, const EpochReading& reading,
                         const Reporter& reporter) -> int32_t {
                         const int32_t result = CheckTarget(reading.place, target, reporter);
                         if (result != CORVANTIS_SUCCESS) return result;
                         if (ReadCounts(view, reading.place, target)) return CORVANTIS_SUCCESS;
                         return reporter.ReportFault(view);
                     });
}

int32_t CorvantisManyCounts(const CorvantisRecording* recording, int64_t first, int64_t epochs,
                            int32_t entry, int64_t firstPoint, int64_t count, int16_t* values,
                            int64_t stride, uint8_t* missing, CorvantisProblem* problem) {
    return WithContents(recording, problem,
                        [&](const Contents& contents, const Reporter& reporter) -> int32_t {
                            if (values == nullptr || count < 0) return Missing(reporter);
                            const ManyCounts many = {entry, firstPoint, count, values, stride};
                            return ReadManyCounts(contents, first, epochs, many, missing, reporter);
                        });
}

int32_t CorvantisValues(const CorvantisRecording* recording, int64_t epoch, int32_t entry,
                        int64_t first, int64_t count, double* values, int64_t stride,
                        CorvantisProblem* problem) {
    Target<double> target = {entry, first, count, values, stride};
    return WithEpoch(recording, epoch, Depth::kHeader, problem,
                     [&](const Contents& contents, const FileView& view,
                         const EpochReading& reading, const Reporter& reporter) -> int32_t {
                         const int32_t result = CheckTarget(reading.place, target, reporter);
                         if (result != CORVANTIS_SUCCESS) return result;
                         const Scales scales = ScalesOf(contents, reading, CORVANTIS_RESPONSE);
                         if (ReadValues(view, reading.place, target, scales)) {
                             return CORVANTIS_SUCCESS;
                         }
                         return reporter.ReportFault(view);
                     });
}

int32_t CorvantisConductance(const CorvantisRecording* recording, int64_t epoch, int32_t entry,
                             int32_t which, int64_t first, int64_t count, float* values,
                             CorvantisProblem* problem) {
    Target<float> target = {entry, first, count, values, 0};
    return WithEpoch(recording, epoch, Depth::kRecords, problem,
                     [&](const Contents&, const FileView& view, const EpochReading& reading,
                         const Reporter& reporter) -> int32_t {
                         const int32_t result = CheckTarget(reading.place, target, reporter);
                         if (result != CORVANTIS_SUCCESS) return result;
                         if (entry == CORVANTIS_ALL_ENTRIES) return Missing(reporter);
                         return ReadConductances(view, reading, which, target, reporter);
                     });
}
