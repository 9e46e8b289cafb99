// How an epoch proceeds: tick by tick through the pipeline, the outputs, the cell and the inputs.
#include "simulator/streaming/Bench.h"

#include <algorithm>
#include <iterator>
#include <span>

#include "simulator/streaming/Clock.h"

namespace itc18 {
namespace {

constexpr int64_t kRestStep = 1000;    // [µs]
constexpr int64_t kFastTicks = 16384;  // in one call, so that none takes long

bool IsRealTime(const Bench& bench) { return bench.settings.pacing == Pacing::kRealTime; }
int64_t Microseconds(double milliseconds) { return static_cast<int64_t>(milliseconds * 1000); }

size_t EntryAt(const Stream& stream, int64_t tick) {
    const auto entries = static_cast<int64_t>(stream.sequence.size());
    return static_cast<size_t>(((tick - stream.delay) % entries + entries) % entries);
}

// How many ticks happen as one: a pass's entries together, unless they are skewed.
size_t TicksAtOnce(const Bench& bench, const Stream& stream) {
    return stream.ticks < stream.delay || bench.settings.skew ? 1 : stream.sequence.size();
}

// [counts]
uint16_t InputLevel(const Bench& bench, uint32_t input) {
    return input == 0 ? Converted(bench.preparation.Signal()) : EchoAt(input, bench.levels);
}

void StartClamp(Bench& bench, const Stream& stream) {
    const PlayerEpoch& epoch = stream.epoch;
    if (epoch.excitatory == nullptr) return;
    const auto steps = bench.settings.skew ? epoch.entries : 1;
    bench.preparation.StartDynamicClamp(
        {epoch.latency * steps, epoch.excitatoryReversal, epoch.inhibitoryReversal});
}

ClampConductances ConductancesAt(const Stream& stream) {
    if (stream.epoch.excitatory == nullptr || stream.ticks < stream.delay) return {};
    const int64_t point = (stream.ticks - stream.delay) / stream.epoch.entries;
    return {stream.epoch.excitatory[point], stream.epoch.inhibitory[point]};
}

// What leaves the pipeline stands at the outputs from now on.
void PassOutputs(Bench& bench, Stream& stream, std::span<uint16_t> samples,
                 std::span<const uint32_t> words) {
    bench.output.Take(samples);
    if (stream.ticks >= stream.delay && stream.delay > 0) {
        // It holds `delay` samples, which may be fewer than are played at once.
        for (uint16_t& sample : samples) {
            uint16_t played = 0;
            stream.pipeline.Take({&played, 1});
            stream.pipeline.Put({&sample, 1});
            sample = played;
        }
    }
    if (stream.ticks >= stream.delay)
        SetOutputs(bench.levels, words, samples.data());
    else
        stream.pipeline.Put(samples);
}

void PassTicks(Bench& bench, Stream& stream, size_t count) {
    std::array<uint16_t, ITC18Simulator_SequenceMemory> memory;
    const std::span samples(memory.data(), count);
    const auto words = std::span(stream.sequence).subspan(EntryAt(stream, stream.ticks), count);
    if (stream.ticks == stream.delay) StartClamp(bench, stream);
    PassOutputs(bench, stream, samples, words);
    for (size_t entry = 0; entry < count; ++entry)
        samples[entry] = InputLevel(bench, InputOf(words[entry]));
    bench.input.Put(samples);
    const auto duration = stream.interval * static_cast<int64_t>(count);
    bench.preparation.Advance(CommandCounts(bench.levels), static_cast<double>(duration),
                              ConductancesAt(stream));
    stream.ticks += static_cast<int64_t>(count);
    bench.played += duration;
}

bool IsReached(const Bench& bench, double milliseconds) {
    return milliseconds >= 0 && bench.played >= Microseconds(milliseconds);
}

int64_t TimeOf(const Bench& bench, const Stream& stream, int64_t tick) {
    return IsRealTime(bench) ? stream.begin + tick * stream.interval : ClockNow();
}

// The epoch goes on after a stall as if there had been no such time.
bool IsStalled(Bench& bench, Stream& stream) {
    if (bench.hasStalled || !IsReached(bench, bench.settings.stallAt)) return false;
    if (!stream.stalled) stream.stalled = TimeOf(bench, stream, stream.ticks);
    const int64_t duration = Microseconds(bench.settings.stallFor);
    if (bench.settings.stallFor < 0 || ClockNow() < *stream.stalled + duration) return true;
    stream.stalled.reset();
    stream.begin += duration;
    bench.hasStalled = true;
    return false;
}

bool IsDue(const Bench& bench, const Stream& stream, size_t count) {
    return !IsRealTime(bench) ||
           TimeOf(bench, stream, stream.ticks + static_cast<int64_t>(count)) <= ClockNow();
}

// In its own time an epoch does not wait for the caller.
bool HasSamples(const Bench& bench, Stream& stream, size_t count) {
    if (bench.output.Held() >= count && bench.input.Free() >= count) return true;
    if (IsRealTime(bench))
        stream.failure = bench.output.Held() < count ? Player_Underrun : Player_Overflow;
    return false;
}

bool MayPass(Bench& bench, Stream& stream, size_t count) {
    if (stream.failure != Player_Success || stream.ticks >= stream.total) return false;
    if (IsStalled(bench, stream)) return false;
    if (!IsDue(bench, stream, count)) return false;
    bench.lost = IsReached(bench, bench.settings.loseAt);
    return !bench.lost && HasSamples(bench, stream, count);
}

void AwaitTrigger(Bench& bench, Stream& stream) {
    if (bench.settings.triggerAfter < 0) return;
    const int64_t after = Microseconds(bench.settings.triggerAfter);
    if (IsRealTime(bench) && ClockNow() < stream.begin + after) return;
    stream.waits = false;
    stream.begin += after;
    Rest(bench, after);
}

}  // namespace

void Begin(Bench& bench, const ITC18Simulator_State& device, const PlayerEpoch& epoch) {
    const std::span words(device.sequence, static_cast<size_t>(device.sequenceLength));
    const int64_t delay = bench.settings.pipeline;
    bench.stream.emplace(Stream{
        .epoch = epoch,
        .sequence = {words.begin(), words.end()},
        .interval = device.interval,
        .delay = delay,
        .total = delay + int64_t{epoch.points} * epoch.entries,
        .waits = epoch.trigger != 0,
        .begin = ClockNow(),
        .pipeline = Fifo(static_cast<size_t>(delay)),
    });
}

void Proceed(Bench& bench) {
    if (!bench.stream || bench.lost) return;
    Stream& stream = *bench.stream;
    if (stream.waits) AwaitTrigger(bench, stream);
    if (stream.waits) return;
    const int64_t end = IsRealTime(bench) ? stream.total : stream.ticks + kFastTicks;
    size_t count = TicksAtOnce(bench, stream);
    while (stream.ticks < end && MayPass(bench, stream, count)) {
        PassTicks(bench, stream, count);
        count = TicksAtOnce(bench, stream);
    }
}

void Trigger(Bench& bench) {
    if (!bench.stream || !bench.stream->waits) return;
    bench.stream->waits = false;
    bench.stream->begin = ClockNow();
}

void End(Bench& bench) {
    if (bench.stream) bench.preparation.EndDynamicClamp();
    bench.stream.reset();
    bench.output.Clear();
    bench.input.Clear();
}

// In equal steps however it is divided, as far as whole steps go.
void Rest(Bench& bench, int64_t microseconds) {
    const double command = CommandCounts(bench.levels);
    for (int64_t left = microseconds; left > 0; left -= kRestStep)
        bench.preparation.Advance(command, static_cast<double>(std::min(left, kRestStep)));
}

}  // namespace itc18
