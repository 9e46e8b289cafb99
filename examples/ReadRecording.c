/* read-recording FILE: prints every epoch of a recording, with what was played and how the cell
 * answered, through the reading library: no start-up, no state, and damaged epochs passed over.
 * Ends with 1 if an epoch cannot be read, with 2 if the file cannot. */
#include <stdio.h>
#include <stdlib.h>

#include "CorvantisReading.h"

enum { kReadable = 0, kDamaged = 1, kUnusable = 2 };

typedef struct Range {
    double least, most;
} Range;

static Range RangeOf(const double* values, int64_t count) {
    Range range = {values[0], values[0]};
    for (int64_t i = 1; i < count; ++i) {
        if (values[i] < range.least) range.least = values[i];
        if (values[i] > range.most) range.most = values[i];
    }
    return range;
}

static const char* NameOf(int32_t type) {
    CorvantisTypeInfo info;
    return CorvantisType(type, &info) == CORVANTIS_SUCCESS ? info.name : "";
}

static void PrintRange(const CorvantisRecording* recording, int64_t epoch, int32_t entry,
                       int32_t direction, const double* values, int64_t count) {
    CorvantisScaleInfo scale;
    if (CorvantisScale(recording, epoch, entry, direction, &scale, NULL)) return;
    const Range range = RangeOf(values, count);
    printf("  %8.6g to %-8.6g %-4s", range.least, range.most, scale.unit);
}

/* What was acquired, and what was played as far as the file determines it. */
static int32_t PrintEntry(const CorvantisRecording* recording, int64_t epoch, int32_t entry,
                          const CorvantisEpochInfo* info, double* values,
                          CorvantisProblem* problem) {
    const int64_t points = info->points;
    CorvantisDoubt doubt;
    printf("%5lld %8d us %7d  %-20s", (long long)epoch, info->samplingInterval, info->points,
           NameOf(info->stimulusTypes[entry]));
    int32_t result = CorvantisValues(recording, epoch, entry, 0, points, values, 0, problem);
    if (result) return result;
    if (points > 0) PrintRange(recording, epoch, entry, CORVANTIS_RESPONSE, values, points);
    result =
        CorvantisStimulusValues(recording, epoch, entry, 0, points, values, 0, &doubt, problem);
    if (result == CORVANTIS_NO_STIMULUS) {
        printf("  not stored\n");
        return CORVANTIS_SUCCESS;
    }
    if (result) return result;
    if (points > 0) PrintRange(recording, epoch, entry, CORVANTIS_STIMULUS, values, points);
    printf("%s%s\n", doubt.reason ? "  perhaps: " : "", doubt.text);
    return CORVANTIS_SUCCESS;
}

static int32_t PrintEpoch(const CorvantisRecording* recording, int64_t epoch,
                          CorvantisProblem* problem) {
    CorvantisEpochInfo info;
    int32_t result = CorvantisEpoch(recording, epoch, &info, problem);
    if (result) return result;
    double* values = malloc(sizeof *values * ((size_t)info.points + 1));
    if (values == NULL) return CORVANTIS_OUT_OF_MEMORY;
    for (int32_t entry = 0; entry < info.entries && result == CORVANTIS_SUCCESS; ++entry) {
        result = PrintEntry(recording, epoch, entry, &info, values, problem);
    }
    free(values);
    return result;
}

int main(int argc, char** argv) {
    CorvantisRecording* recording;
    CorvantisProblem problem = {0};
    int code = kReadable;
    if (argc != 2) {
        fprintf(stderr, "usage: read-recording FILE\n");
        return kUnusable;
    }
    if (CorvantisOpen(argv[1], &recording, &problem)) {
        fprintf(stderr, "read-recording: %s\n", problem.text);
        return kUnusable;
    }
    for (int64_t epoch = 0; epoch < CorvantisEpochs(recording); ++epoch) {
        if (PrintEpoch(recording, epoch, &problem) == CORVANTIS_SUCCESS) continue;
        fprintf(stderr, "read-recording: %s\n", problem.text);
        code = kDamaged;
    }
    CorvantisClose(recording);
    return code;
}
