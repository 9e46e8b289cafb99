// Asking the records of all types alike for their runs.
#include "RecordLengths.h"

namespace corvantis {
namespace {

// answer(record) for a record that says how long its runs are, true for any other.
template <class Answer>
bool AskLengths(const Stimulus& stimulus, Answer answer) {
    switch (stimulus.type) {
        case ITC_STIMULUS_SINE:
            return answer(As<ITCSineParameters>(stimulus));
        case ITC_STIMULUS_NOISE:
            return answer(As<ITCNoiseParameters>(stimulus));
        case ITC_STIMULUS_PULSE:
            return answer(As<ITCPulseParameters>(stimulus));
        case ITC_STIMULUS_RAMP:
            return answer(As<ITCRampParameters>(stimulus));
        case ITC_STIMULUS_SEGMENTED_NOISE:
            return answer(As<ITCSegmentedNoiseParameters>(stimulus));
        case ITC_STIMULUS_BINARY_NOISE:
            return answer(As<ITCBinaryNoiseParameters>(stimulus));
        case ITC_STIMULUS_ALTERNATING_VOLTAGE:
            return answer(As<ITCAlternateVoltageParameters>(stimulus));
        default:
            return true;
    }
}

template <class Record>
int64_t TotalPoints(const Record& record) {
    return int64_t{record.prePoints} + record.points + record.tailPoints;
}

}  // namespace

bool FillsEpoch(const Stimulus& stimulus, int32_t points) {
    const auto fills = [=](const auto& record) { return TotalPoints(record) == points; };
    return AskLengths(stimulus, fills);
}

bool StaysWithin(const Stimulus& stimulus, int32_t points) {
    return AskLengths(stimulus, [=](const auto& record) {
        return record.points >= 0 && record.points <= points && TotalPoints(record) <= points;
    });
}

}  // namespace corvantis
