// Any bytes as a recording, from a source that may fail at any read: everything that can be asked
// of it.
#include <algorithm>
#include <array>
#include <cstring>
#include <vector>

#include "CorvantisReading.h"
#include "Session.h"

namespace {

constexpr int64_t kMostEpochs = 4;
constexpr int64_t kMostPoints = 4096;

struct Memory {
    const uint8_t* bytes;
    int64_t size;
    int64_t reads = 0;
    int64_t faultyRead = 0;  // 0: none

    static Memory& From(void* context) { return *static_cast<Memory*>(context); }
    int64_t Read(int64_t offset, void* to, int64_t count) {
        if (++reads == faultyRead) return -1;
        const int64_t there = std::clamp<int64_t>(size - offset, 0, count);
        if (there > 0) std::memcpy(to, bytes + offset, static_cast<size_t>(there));
        return there;
    }
};

// Twice the same, if nothing failed.
void ReadSamples(const CorvantisRecording* recording, int64_t epoch,
                 const CorvantisEpochInfo& info) {
    const int64_t count = std::min<int64_t>(info.points, kMostPoints);
    const auto size = static_cast<size_t>(count * std::max(info.entries, 1));
    std::vector<int16_t> counts(size), again(size);
    std::vector<double> values(size);
    CorvantisDoubt doubt;
    CorvantisCounts(recording, epoch, CORVANTIS_ALL_ENTRIES, 0, count, counts.data(), 0, nullptr);
    CorvantisValues(recording, epoch, 0, 0, count, values.data(), 0, nullptr);
    const auto play = [&](std::vector<int16_t>& to) {
        return CorvantisStimulus(recording, epoch, CORVANTIS_ALL_ENTRIES, 0, count, to.data(), 0,
                                 &doubt, nullptr);
    };
    if (play(counts) == CORVANTIS_SUCCESS && play(again) == CORVANTIS_SUCCESS) {
        corvantis_fuzz::Require(counts == again);
    }
    for (int32_t entry = 0; entry < info.entries; ++entry) {
        CorvantisStimulusValues(recording, epoch, entry, 0, count, values.data(), 0, &doubt,
                                nullptr);
    }
}

void ReadParameters(const CorvantisRecording* recording, int64_t epoch,
                    const CorvantisEpochInfo& info) {
    for (int32_t entry = 0; entry < info.entries; ++entry) {
        CorvantisStimulusRecord record;
        for (const int32_t component : {-1, 0, 255}) {
            CorvantisParameters(recording, epoch, entry, component, &record, nullptr);
        }
        CorvantisScaleInfo scale;
        for (const int32_t direction : {CORVANTIS_RESPONSE, CORVANTIS_STIMULUS}) {
            CorvantisScale(recording, epoch, entry, direction, &scale, nullptr);
        }
        std::array<char, 400> json;
        int64_t length = 0;
        CorvantisStimulusJson(recording, epoch, entry, json.data(), std::ssize(json), &length,
                              nullptr);
        std::array<float, 8> conductances;
        CorvantisConductance(recording, epoch, entry, CORVANTIS_INHIBITORY, 0,
                             std::min(info.points, 8), conductances.data(), nullptr);
    }
}

void ReadEpoch(const CorvantisRecording* recording, int64_t epoch) {
    CorvantisEpochInfo info;
    CorvantisProblem problem = {};
    const int32_t result = CorvantisEpoch(recording, epoch, &info, &problem);
    corvantis_fuzz::Require((result == CORVANTIS_SUCCESS) == (problem.text[0] == '\0'));
    if (result != CORVANTIS_SUCCESS) return;
    corvantis_fuzz::Require(info.entries >= 0 && info.entries <= CORVANTIS_ENTRIES &&
                            info.points >= 0);
    for (int32_t entry = 0; entry < info.entries; ++entry) {
        corvantis_fuzz::reachedTypes.insert(info.stimulusTypes[entry]);
    }
    ReadSamples(recording, epoch, info);
    ReadParameters(recording, epoch, info);
}

void ReadColumns(const CorvantisRecording* recording) {
    const CorvantisField* fields = nullptr;
    int32_t count = 0;
    CorvantisFields(CORVANTIS_EPOCH_HEADER, &fields, &count);
    std::array<uint8_t, 512 * kMostEpochs> values;
    std::array<uint8_t, kMostEpochs> missing;
    const CorvantisColumn column = {fields + 1, values.data(), 512};
    std::array<int16_t, 8 * kMostEpochs> counts;
    CorvantisManyCounts(recording, 0, std::min(CorvantisEpochs(recording), kMostEpochs),
                        CORVANTIS_ALL_ENTRIES, 1, 2, counts.data(), 8, missing.data(), nullptr);
    CorvantisColumns(recording, 0, std::min(CorvantisEpochs(recording), kMostEpochs), &column, 1,
                     missing.data(), nullptr);
}

void ReadTexts(const CorvantisRecording* recording) {
    std::array<char, 3000> room;
    std::array<int64_t, kMostEpochs> ends;
    std::array<CorvantisTexts, CORVANTIS_SAY_DAMAGE + 1> texts;
    for (int32_t subject = 0; subject <= CORVANTIS_SAY_DAMAGE; ++subject) {
        texts[static_cast<size_t>(subject)] = {subject, room.data(), std::ssize(room), ends.data()};
    }
    std::array<uint8_t, kMostEpochs> missing;
    std::array<int32_t, kMostEpochs> doubts;
    for (const CorvantisTexts& each : texts) {
        int64_t described = 0;
        CorvantisDescribe(recording, 0, std::min(CorvantisEpochs(recording), kMostEpochs), &each, 1,
                          nullptr, doubts.data(), missing.data(), &described, nullptr);
    }
}

// Whatever was found must be found again by what is known of it.
void Recall(const CorvantisRecording* recording, const CorvantisSource& source) {
    CorvantisRecordingInfo info;
    CorvantisEpochInfo epoch;
    if (CorvantisInfo(recording, &info) != CORVANTIS_SUCCESS || info.epochs < 1) return;
    if (CorvantisEpoch(recording, info.epochs - 1, &epoch, nullptr) != CORVANTIS_SUCCESS) return;
    const CorvantisPlace place = {info.epochs - 1, epoch.start, epoch.end, epoch.digest};
    CorvantisRecording* recalled = nullptr;
    CorvantisOpenKnown("memory", &source, &info, &place, 1, &recalled, nullptr);
    if (recalled != nullptr) ReadEpoch(recalled, info.epochs - 1);
    CorvantisClose(recalled);
}

void ReadFindings(const CorvantisRecording* recording) {
    int64_t count = 0;
    CorvantisFinding finding;
    if (CorvantisFindings(recording, &count, nullptr) != CORVANTIS_SUCCESS) return;
    for (int64_t i = 0; i < std::min<int64_t>(count, 8); ++i) {
        corvantis_fuzz::Require(CorvantisGetFinding(recording, i, &finding) == CORVANTIS_SUCCESS);
    }
}

}  // namespace

// The first byte says which read fails, the second how much of the file is there at first.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 2) return 0;
    Memory memory{data + 2, static_cast<int64_t>(size - 2)};
    memory.faultyRead = data[0];
    if (data[1] != 0) memory.size = std::min<int64_t>(memory.size, int64_t{data[1]} * 32);
    const CorvantisSource source = {&memory,
                                    [](void* context) { return Memory::From(context).size; },
                                    [](void* context, int64_t offset, void* to, int64_t count) {
                                        return Memory::From(context).Read(offset, to, count);
                                    },
                                    nullptr};
    CorvantisRecording* recording = nullptr;
    CorvantisProblem problem = {};
    const int32_t result = CorvantisOpenSource(&source, "memory", &recording, &problem);
    corvantis_fuzz::Require((result == CORVANTIS_SUCCESS) == (recording != nullptr));
    corvantis_fuzz::Require((result == CORVANTIS_SUCCESS) == (problem.text[0] == '\0'));
    if (recording == nullptr) return 0;
    const int64_t epochs = CorvantisEpochs(recording);
    for (int64_t epoch = std::min(epochs, kMostEpochs); epoch-- > 0;) ReadEpoch(recording, epoch);
    ReadColumns(recording);
    ReadTexts(recording);
    ReadFindings(recording);
    Recall(recording, source);
    memory.size = static_cast<int64_t>(size - 2);
    CorvantisRefresh(recording, nullptr);
    ReadEpoch(recording, CorvantisEpochs(recording) - 1);
    CorvantisClose(recording);
    return 0;
}
