// Segmented and binary noise: one random level per segment, laid over the holding level.
#include <algorithm>
#include <array>
#include <span>

#include "Corvantis.h"
#include "ITCUtilities/WrappingArithmetic.h"
#include "ITCWaveforms/Draws.h"
#include "ITCWaveforms/Samples.h"
#include "ITCWaveforms/Waveforms.h"

namespace corvantis {
namespace {

constexpr size_t kBatch = 4096;

// Points before the buffer, which a negative prePoints would ask for, are passed over.
void LayLevels(uint16_t* buffer, int64_t x, std::span<const float> levels, int32_t segmentPoints) {
    if (segmentPoints < 0) return;
    if (segmentPoints == 1 && x >= 0) {
        AddLevels({buffer + x, levels.size()}, levels.data());
        return;
    }
    for (const float level : levels) {
        const int64_t end = x + segmentPoints;
        const int64_t begin = std::clamp<int64_t>(0, x, end);
        AddLevel({buffer + begin, static_cast<size_t>(end - begin)}, level);
        x = end;
    }
}

// Segments of negative length in a negative run have no point, but their levels are drawn, and
// later waveforms go on behind them. A damaged record could ask for 2^31 such draws: beyond this
// number they are not made, and noise that continues such a record differs from what the formula
// says.
constexpr int64_t kMostEmptySegments = 1 << 16;

template <class Record>
int64_t CountSegments(const Record& record) {
    if (record.segmentPoints == 0) return 0;
    const int64_t segments = std::max<int64_t>(int64_t{record.points} / record.segmentPoints, 0);
    return record.segmentPoints > 0 ? segments : std::min(segments, kMostEmptySegments);
}

// drawLevels(levels) gives the levels of the next segments.
template <class Record, class DrawLevels>
void LayNoise(uint16_t* buffer, const Record& record, DrawLevels drawLevels) {
    WriteLevel(buffer, TotalPoints(record), record.mean);
    const int64_t segments = CountSegments(record);
    std::array<float, kBatch> batch;
    for (int64_t s = 0; s < segments; s += kBatch) {
        const size_t count = std::min(kBatch, static_cast<size_t>(segments - s));
        const std::span<float> levels(batch.data(), count);
        drawLevels(levels);
        LayLevels(buffer, record.prePoints + s * record.segmentPoints, levels,
                  record.segmentPoints);
    }
}

}  // namespace

// A negative record seed makes the state word positive: the generator is not restarted and the
// waveform continues the sequence of the one before, as recorded waveforms did.
void CreateWaveform(uint16_t* buffer, const ITCSegmentedNoiseParameters& record,
                    NoiseGenerators& generators) {
    int32_t word = WrappingNegate(record.seed);
    DrawUniformDeviate(generators.uniform, word);
    const float amplitude = static_cast<float>(record.amplitude);
    LayNoise(buffer, record, [=, &generators, &word](auto levels) {
        DrawNormalDeviates(generators, word, levels);
        for (float& level : levels) level *= amplitude;
    });
}

void CreateWaveform(uint16_t* buffer, const ITCBinaryNoiseParameters& record,
                    NoiseGenerators& generators) {
    int32_t word = WrappingNegate(record.seed);
    DrawUniformDeviate(generators.uniform, word);
    const float up = static_cast<float>(record.amplitude);
    const float down = static_cast<float>(WrappingNegate(record.amplitude));
    LayNoise(buffer, record, [=, &generators, &word](auto levels) {
        DrawUniformDeviates(generators.uniform, word, levels);
        for (float& level : levels) level = level > 0.5F ? up : down;
    });
}

Draws DrawsOf(const ITCSegmentedNoiseParameters& record) {
    return {Deviates::kNormal, record.seed, CountSegments(record)};
}

Draws DrawsOf(const ITCBinaryNoiseParameters& record) {
    return {Deviates::kUniform, record.seed, CountSegments(record)};
}

}  // namespace corvantis
