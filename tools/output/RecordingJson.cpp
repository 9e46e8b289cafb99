// Headers, entries, stimuli and findings as JSON objects.
#include "output/RecordingJson.h"

#include <array>

#include "text/Text.h"

namespace corvantis::tool {
namespace {

Json OrNull(int64_t value) { return value < 0 ? Json() : Json(value); }

// 8 is the digital port of the inputs, 4 that of the outputs.
Json ChannelJson(int32_t channel, int32_t digital) {
    return channel == digital ? Json("digital") : OrNull(int64_t{channel});
}

Json ScaleJson(const CorvantisScaleInfo& scale) {
    return {{"countsPerVolt", scale.countsPerVolt},
            {"gain", scale.gain},
            {"factor", scale.factor},
            {"unit", scale.unit},
            {"isWord", scale.isWord == 1},
            {"formula", scale.formula}};
}

const char* ReasonName(int32_t reason) {
    constexpr std::array<const char*, 6> names = {
        "none", "restsOnOrder", "beganBeforeFile", "behindUnknown", "oldGenerator", "followedCell"};
    return names[static_cast<size_t>(reason)];
}

Json DoubtJson(const CorvantisDoubt& doubt) {
    if (doubt.reason == CORVANTIS_NO_DOUBT) return nullptr;
    return {
        {"reason", ReasonName(doubt.reason)}, {"epoch", OrNull(doubt.epoch)}, {"text", doubt.text}};
}

const char* CodeName(int32_t code) {
    switch (code) {
        case CORVANTIS_NOT_A_RECORDING:
            return "notARecording";
        case CORVANTIS_VERSION_TOO_NEW:
            return "versionTooNew";
        case CORVANTIS_OUT_OF_MEMORY:
            return "outOfMemory";
        case CORVANTIS_CHANGED:
            return "changed";
        default:
            return "fileError";
    }
}

Json EntryJson(const DataFile& file, const EpochRecords& epoch, int32_t entry) {
    const CorvantisScaleInfo scale = ScaleOf(file, epoch.number, entry, CORVANTIS_STIMULUS);
    const StimulusState state = StimulusStateOf(file, epoch.number, entry);
    return {{"input", ChannelJson(epoch.info.inputs[entry], 8)},
            {"output", ChannelJson(epoch.info.outputs[entry], 4)},
            {"responseScale", ScaleJson(ScaleOf(file, epoch.number, entry, CORVANTIS_RESPONSE))},
            {"stimulusScale", ScaleJson(scale)},
            {"stimulus", Json::parse(StimulusJsonOf(file, epoch.number, entry))},
            {"problem", state.problem.empty() ? Json() : Json(state.problem)},
            {"doubt", DoubtJson(state.doubt)}};
}

const char* WeightName(int32_t weight) {
    constexpr std::array<const char*, 3> names = {"note", "doubt", "fault"};
    return names[static_cast<size_t>(weight)];
}

}  // namespace

Json RecordingJson(const DataFile& file) {
    const CorvantisRecordingInfo info = file.Info();
    std::array<uint8_t, CORVANTIS_FILE_HEADER_SIZE> header = {};
    CorvantisFileHeader(file.Recording(), header.data());
    Json notFinite = Json::object();
    const Json values = FieldValues(FieldsOf(CORVANTIS_FILE_HEADER), header.data(), notFinite);
    return {{"file", file.Name()},
            {"bytes", info.size},
            {"found", info.found == CORVANTIS_BY_TABLE ? "table" : "walk"},
            {"epochCount", info.epochs},
            {"header", values},
            {"notFinite", notFinite}};
}

Json FailureJson(const std::string& name, const Failure& failure) {
    return {{"file", name},
            {"problem",
             {{"code", CodeName(failure.code)}, {"text", reading::DisplayText(failure.what())}}}};
}

Json LostJson(const LostEpochs& lost) {
    return {{"number", lost.first},
            {"lastNumber", lost.last},
            {"position", OrNull(lost.offset)},
            {"problem", lost.text}};
}

Json EpochJson(const DataFile& file, const EpochRecords& epoch) {
    Json notFinite = Json::object(), entries = Json::array();
    const Json values =
        FieldValues(FieldsOf(CORVANTIS_EPOCH_HEADER), epoch.header.data(), notFinite);
    for (int32_t entry = 0; entry < epoch.info.entries; ++entry) {
        entries.push_back(EntryJson(file, epoch, entry));
    }
    return {{"number", epoch.number}, {"position", epoch.info.start},
            {"problem", nullptr},     {"samples", epoch.info.samples},
            {"end", epoch.info.end},  {"header", values},
            {"notFinite", notFinite}, {"entries", entries}};
}

Json FindingJson(const reading::Finding& finding) {
    return {{"offset", finding.offset},
            {"epoch", OrNull(finding.epoch)},
            {"weight", WeightName(finding.weight)},
            {"place", finding.place},
            {"found", finding.found},
            {"expected", finding.expected}};
}

}  // namespace corvantis::tool
