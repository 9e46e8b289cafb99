// Segmented and binary noise: one random level per segment, laid over the holding level.
#include "Corvantis.h"
#include "ITCStimulus/Samples.h"
#include "ITCStimulus/Shapes.h"
#include "ITCUtilities/WrappingArithmetic.h"

namespace corvantis {
namespace {

// The sample is read back as signed 16 bits: the level adds to the mean as it was truncated.
void AddLevel(uint16_t& sample, float level) {
    sample = ConvertToSample(level + static_cast<float>(static_cast<int16_t>(sample)));
}

// drawLevel() gives the level of the next segment. Points before the buffer, which a negative
// prePoints would ask for, are passed over; a negative segment length makes no segments at all.
template <class Record, class DrawLevel>
void LayNoise(uint16_t* buffer, const Record& record, DrawLevel drawLevel) {
    WriteLevel(buffer, TotalPoints(record), record.mean);
    if (record.segmentPoints <= 0) return;
    const int32_t segments = record.points / record.segmentPoints;
    int64_t x = record.prePoints;
    for (int32_t s = 0; s < segments; ++s) {
        const float level = drawLevel();
        for (int32_t j = 0; j < record.segmentPoints; ++j, ++x) {
            if (x >= 0) AddLevel(buffer[x], level);
        }
    }
}

}  // namespace

// A negative record seed makes the state word positive: the generator is not restarted and the
// waveform continues the sequence of the one before, as recorded waveforms did.
void CreateWaveform(uint16_t* buffer, const ITCSegmentedNoiseParameters& record) {
    static int32_t seed;
    seed = WrappingNegate(record.seed);
    ITCSeedRandom(&seed);
    LayNoise(buffer, record, [amplitude = static_cast<float>(record.amplitude)] {
        return amplitude * ITCNormalDeviate(&seed);
    });
}

void CreateWaveform(uint16_t* buffer, const ITCBinaryNoiseParameters& record) {
    static int32_t seed;
    seed = WrappingNegate(record.seed);
    ITCSeedRandom(&seed);
    const float up = static_cast<float>(record.amplitude);
    const float down = static_cast<float>(WrappingNegate(record.amplitude));
    LayNoise(buffer, record, [=] { return ran2(&seed) > 0.5F ? up : down; });
}

}  // namespace corvantis
