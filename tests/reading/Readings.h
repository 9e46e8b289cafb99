// Recordings made by the library, what was acquired and played in them, and reading them from
// memory that counts, fails or changes.
#pragma once

#include <algorithm>
#include <atomic>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "CorvantisReading.h"
#include "PulseEpoch.h"

namespace corvantis_test {

using Counts = std::vector<int16_t>;

struct RecordedEpoch {
    int32_t points;
    int32_t entries;
    Counts acquired;  // of all entries, point by point
    Counts played;
};

struct RecordedFile {
    Bytes bytes;
    std::vector<Bytes> steps;  // the file before the first save and after each
    std::vector<RecordedEpoch> epochs;
};

// Each preparation sets up an epoch, which is computed, "acquired" and saved. What stimuli the
// library cannot compute are 0.
inline RecordedFile RecordFile(const std::vector<std::function<void()>>& preparations,
                               int8_t version = 8) {
    RecordedFile file;
    const TemporaryFolder folder;
    LibrarySession session;
    PseudoRandom random;
    const std::string path = folder.File("recorded.dat");
    EXPECT_EQ(ITCCreateFile(path.c_str(), 1), 0);
    filehdr->version = version;
    fflush(ITCOpenFilePtr);
    file.steps.push_back(FileContent(path));
    for (const auto& prepare : preparations) {
        const QuietOutput quiet;
        prepare();
        random.Fill(session.input);
        std::fill(session.output.begin(), session.output.end(), uint16_t{0});
        ITCUpdateStm();
        EXPECT_EQ(ITCSaveToFile(), 0);
        file.steps.push_back(FileContent(path));
        const int32_t entries = epochhdr->sequenceLength, points = epochhdr->epochPoints;
        const auto* in = reinterpret_cast<const int16_t*>(session.input.data());
        const auto* out = reinterpret_cast<const int16_t*>(session.output.data());
        const int64_t size = int64_t{points} * entries;
        file.epochs.push_back({points, entries, {in, in + size}, {out, out + size}});
    }
    file.bytes = file.steps.back();
    return file;
}

// A source over bytes in memory. Reads are numbered from 1.
struct MemorySource {
    enum class Fault { kNone, kFails, kShort };

    Bytes bytes;
    std::atomic<int32_t> reads = 0;
    std::atomic<int32_t> bytesRead = 0;
    int64_t faultyRead = 0;
    Fault fault = Fault::kNone;
    std::atomic<int> closed = 0;

    CorvantisSource Get() {
        return {this, [](void* context) { return From(context).Size(); },
                [](void* context, int64_t offset, void* to, int64_t count) {
                    return From(context).Read(offset, to, count);
                },
                [](void* context) { ++From(context).closed; }};
    }

    static MemorySource& From(void* context) { return *static_cast<MemorySource*>(context); }
    int64_t Size() const { return static_cast<int64_t>(bytes.size()); }
    int64_t Read(int64_t offset, void* to, int64_t count) {
        const bool isFaulty = ++reads == faultyRead;
        if (isFaulty && fault == Fault::kFails) return -1;
        int64_t there = std::clamp<int64_t>(Size() - offset, 0, count);
        if (isFaulty && fault == Fault::kShort) there = 0;
        if (there > 0) std::memcpy(to, bytes.data() + offset, static_cast<size_t>(there));
        bytesRead += static_cast<int32_t>(there);
        return there;
    }
};

// An open recording; without one, why.
struct Reading {
    explicit Reading(MemorySource& source) {
        const CorvantisSource given = source.Get();
        code = CorvantisOpenSource(&given, "memory", &recording, &problem);
    }
    explicit Reading(const std::string& path) {
        code = CorvantisOpen(path.c_str(), &recording, &problem);
    }
    Reading(const Reading&) = delete;
    Reading& operator=(const Reading&) = delete;
    ~Reading() { CorvantisClose(recording); }

    int64_t Epochs() const { return CorvantisEpochs(recording); }
    std::string Text() const { return problem.text; }

    // All of an epoch's samples, or those of one entry; the code stays.
    Counts Acquired(int64_t epoch, int32_t entry = CORVANTIS_ALL_ENTRIES) {
        return Fetch(epoch, entry, [&](int64_t points, int16_t* to) {
            return CorvantisCounts(recording, epoch, entry, 0, points, to, 0, &problem);
        });
    }
    Counts Played(int64_t epoch, int32_t entry = CORVANTIS_ALL_ENTRIES) {
        return Fetch(epoch, entry, [&](int64_t points, int16_t* to) {
            return CorvantisStimulus(recording, epoch, entry, 0, points, to, 0, &doubt, &problem);
        });
    }

    CorvantisRecording* recording = nullptr;
    CorvantisProblem problem = {};
    CorvantisDoubt doubt = {};
    int32_t code = 0;

  private:
    template <class Read>
    Counts Fetch(int64_t epoch, int32_t entry, Read read) {
        CorvantisEpochInfo info;
        code = CorvantisEpoch(recording, epoch, &info, &problem);
        if (code != CORVANTIS_SUCCESS) return {};
        const int64_t width = entry == CORVANTIS_ALL_ENTRIES ? info.entries : 1;
        Counts values(static_cast<size_t>(info.points * width));
        code = read(info.points, values.data());
        return code == CORVANTIS_SUCCESS ? values : Counts{};
    }
};

// ---- Epochs to record -----------------------------------------------------------------------

inline constexpr int32_t kNoisePoints = 120;

// An odd number of segments leaves a deviate to the next noise.
inline void SetUpNoise(int32_t seed, int32_t segmentPoints, int32_t entries = 1) {
    const ITCSegmentedNoiseParameters noise = {300, 7, seed, kNoisePoints, 0, 0, segmentPoints, {}};
    SetUpAcquisition(entries, kNoisePoints);
    for (int32_t entry = 0; entry < entries; ++entry) {
        ASSERT_EQ(ITCSegmentedNoiseParams(entry, &noise), 0);
    }
}

// Of a sequence of four: a pulse, conductances, a sum, other conductances.
inline void SetUpFourEntries() {
    static std::vector<float> excitatory = {1, 2, 3, 4}, inhibitory = {-1, -2.5F, 1e30F, 0};
    const ITCGClampParameters reversals[] = {{0, -70}, {5, -80}};
    SetUpPulseEpoch(4);
    ExcitatoryG = excitatory.data();
    InhibitoryG = inhibitory.data();
    ASSERT_EQ(ITCGClampParams(1, &reversals[0], 77), 0);
    ASSERT_EQ(ITCGClampParams(3, &reversals[1], 77), 0);
    ASSERT_EQ(InstallSum(2, ITC_COMPONENTS), 0);
    for (int i = 0; i < ITC_COMPONENTS; ++i) ASSERT_EQ(ITCAddPulseParams(2, &kPulse), 0);
}

// Nothing of either entry is in the file, but the table counts 44 bytes.
inline void SetUpUnstored() {
    static const uint16_t wave[kPulseEpochPoints] = {1, 2, 3, 4};
    const ITCFilewaveParameters given = {wave, kPulseEpochPoints};
    const ITCTrigSeriesParameters triggers = {0, 1, 2, kPulseEpochPoints, 0, 0, {}};
    SetUpAcquisition(2, kPulseEpochPoints);
    ASSERT_EQ(ITCFilewaveParams(0, &given), 0);
    ASSERT_EQ(ITCTrigSeriesParams(1, &triggers), 0);
}

}  // namespace corvantis_test
