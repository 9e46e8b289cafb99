// The analysis interface's calls, epoch by epoch, and the conversion into physical units.
#include "Recording.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <limits>

#include "Corvantis.h"
#include "LibraryCalls.h"
#include "StimulusNames.h"

namespace {

// No epoch can hold more samples than the file has room for, so buffers of that size take all.
int32_t BufferSamples(const std::string& path) {
    constexpr uintmax_t kMost = std::numeric_limits<int32_t>::max();
    return static_cast<int32_t>(std::min(std::filesystem::file_size(path) / 2, kMost));
}

std::string Text(const char* text, size_t room) {
    std::string result(text, strnlen(text, room));
    std::ranges::replace_if(
        result, [](unsigned char c) { return c < ' ' || c == 0x7F; }, ' ');
    return result;
}

bool IsUsable(double factor) { return std::isfinite(factor) && factor != 0; }

// Without a factor a value stays in volts, without the file's scale in counts.
Scale PhysicalScale(double countsPerVolt, double unitsPerVolt, const char* unit) {
    if (!IsUsable(countsPerVolt)) return {1, "counts"};
    if (!IsUsable(unitsPerVolt)) return {1 / countsPerVolt, "V"};
    return {unitsPerVolt / countsPerVolt, Text(unit, ITC_UNITS_LENGTH)};
}

Scale ResponseScale(int32_t epoch, int32_t entry) {
    float gain = 0;
    Require(ITCGetAmpGain(epoch, entry, &gain), "ITCGetAmpGain");
    return PhysicalScale(filehdr->inputScale, 1 / double{gain}, ITCGetInputUnits(entry));
}

Scale StimulusScale(int32_t entry) {
    return PhysicalScale(filehdr->outputScale, ITCGetConvFactor(entry), ITCGetOutputUnits(entry));
}

Component ReadComponent(int32_t epoch, int32_t entry, int32_t number, int32_t type) {
    Component component{type, 0, 0, 0, 0, false, false};
    component.hasLevels = ITCGetStmAmp(epoch, entry, number, &component.amplitude) == 0 &&
                          ITCGetStmMean(epoch, entry, number, &component.mean) == 0;
    component.hasPoints = ITCGetStmPrePts(epoch, entry, number, &component.prePoints) == 0 &&
                          ITCGetStmPts(epoch, entry, number, &component.points) == 0;
    return component;
}

// Only a sum has another number of components than one.
std::vector<Component> ReadStimulus(int32_t epoch, int32_t entry) {
    std::vector<Component> components;
    // A sum's record begins with the number of its components.
    int32_t count = 1;
    if (ITCGetStimType(entry) == ITC_STIMULUS_SUMMED) ITCGetStimParams(entry, &count, sizeof count);
    int32_t type = 0;
    for (int32_t k = 0; k < count && ITCGetStmType(epoch, entry, k, &type) == ITC_SUCCESS; ++k) {
        components.push_back(ReadComponent(epoch, entry, k, type));
    }
    return components;
}

// The amplitude of a noise is a deviation to both sides.
bool IsNoise(int32_t type) {
    return type == ITC_STIMULUS_NOISE || type == ITC_STIMULUS_SEGMENTED_NOISE ||
           type == ITC_STIMULUS_BINARY_NOISE;
}

std::string ComponentText(const Component& component, const Scale& scale) {
    std::string text = StimulusName(component.type);
    if (!component.hasLevels) return text;
    const std::string amplitude = LevelText(component.amplitude, scale);
    const std::string mean = LevelText(component.mean, scale);
    if (IsNoise(component.type)) return text.append(" ").append(mean).append(" +- ") + amplitude;
    text.append(" ").append(amplitude);
    return component.mean == 0 ? text : text.append(" about ").append(mean);
}

}  // namespace

Recording::Recording(const std::string& path) : version(0), epochs(0) {
    Require(ITCInitializeAnalysis(BufferSamples(path)), "ITCInitializeAnalysis");
    Require(ITCOpenFileForInput(path.c_str()), ("ITCOpenFileForInput of " + path).c_str());
    Require(ITCGetNumberEpochs(&epochs), "ITCGetNumberEpochs");
    version = filehdr->version;
    comment = Text(ITCGetFileCom(), ITC_COMMENT_LENGTH);
}

Recording::~Recording() {
    ITCCloseOpenFile();
    ITCFinishAnalysis();
}

Epoch ReadEpoch(int32_t number) {
    Epoch epoch{number, 0, 0, {}, {}, {}};
    int32_t entries = 0;
    Require(ITCGetEpochSize(number, &epoch.points), "ITCGetEpochSize");
    Require(ITCGetEpochSegments(number, &entries), "ITCGetEpochSegments");
    Require(ITCGetSamplingInterval(number, &epoch.interval), "ITCGetSamplingInterval");
    char comment[ITC_COMMENT_LENGTH] = {};
    Require(ITCReadEpochComment(number, comment), "ITCReadEpochComment");
    epoch.comment = Text(comment, sizeof comment);
    for (int32_t entry = 0; entry < entries; ++entry)
        epoch.entries.push_back(
            {ReadStimulus(number, entry), StimulusScale(entry), ResponseScale(number, entry)});
    epoch.acquired.resize(static_cast<size_t>(epoch.points) * epoch.entries.size());
    Require(ITCReadEpoch(number, epoch.acquired.data()), "ITCReadEpoch");
    return epoch;
}

std::vector<uint16_t> RecomputeStimulus(const Epoch& epoch) {
    std::vector<uint16_t> samples(epoch.acquired.size());
    Require(ITCReadEpochStm(epoch.number, samples.data()), "ITCReadEpochStm");
    return samples;
}

std::vector<double> Samples(std::span<const uint16_t> interleaved, const Epoch& epoch, size_t entry,
                            const Scale& scale) {
    std::vector<double> values;
    values.reserve(static_cast<size_t>(epoch.points));
    for (size_t k = entry; k < interleaved.size(); k += epoch.entries.size())
        values.push_back(static_cast<int16_t>(interleaved[k]) * scale.unitsPerCount);
    return values;
}

std::string LevelText(int32_t counts, const Scale& scale) {
    char text[64];
    std::snprintf(text, sizeof text, "%.4g %s", counts * scale.unitsPerCount, scale.unit.c_str());
    return text;
}

std::string StimulusText(const Epoch& epoch, const Entry& entry) {
    std::string text;
    for (const Component& component : entry.stimulus) {
        if (!text.empty()) text.append(" + ");
        text.append(ComponentText(component, entry.stimulusScale));
    }
    if (entry.stimulus.empty() || !entry.stimulus.front().hasPoints) return text;
    const Scale milliseconds{epoch.Milliseconds(1), "ms"};
    return text.append(", ").append(LevelText(entry.stimulus.front().points, milliseconds));
}
