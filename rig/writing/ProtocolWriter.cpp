// Going through a recording's epochs: headers and records by their descriptions.
#include "writing/ProtocolWriter.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <optional>

#include "Corvantis.h"
#include "CorvantisReading.h"
#include "files/DataFile.h"
#include "files/Failure.h"
#include "protocol/Amounts.h"
#include "session/FileComment.h"
#include "text/Text.h"
#include "writing/StoredValues.h"

namespace corvantis::rig {
namespace {

using tool::Require;

struct Writing {
    const CorvantisRecording* recording;
    WrittenProtocol& written;
    std::map<std::string, std::string> channels = {};  // names by their text
    Json channelList = Json::object();
    double behind = 0;  // where the epoch before ended [s]
};

struct Epoch {
    int64_t number;
    CorvantisEpochInfo info;
    ITCEpochHeader header;
};

void Remark(Writing& writing, const Epoch& epoch, const std::string& reason) {
    writing.written.remarks.push_back(fmt::format("epoch {}: {}", epoch.number, reason));
}

Json PortOf(int32_t number, int32_t digital) {
    return number == digital ? Json("digital") : Json(number);
}

// The same channel in another epoch has the same name.
std::string ChannelName(Writing& writing, const Epoch& epoch, int32_t entry) {
    constexpr int32_t kDigitalIn = 8, kDigitalOut = 4;
    Json channel = {{"input", PortOf(epoch.info.inputs[entry], kDigitalIn)},
                    {"output", PortOf(epoch.info.outputs[entry], kDigitalOut)},
                    {"holding", epoch.header.meanOutput[entry]}};
    AddHeaderValues(channel, epoch.header, static_cast<size_t>(entry));
    const auto [place, isNew] = writing.channels.try_emplace(
        channel.dump(), fmt::format("channel {}", writing.channels.size()));
    if (isNew) writing.channelList[place->second] = std::move(channel);
    return place->second;
}

Json RecordOf(Writing& writing, const Epoch& epoch, int32_t entry, int32_t component) {
    CorvantisProblem problem = {};
    CorvantisStimulusRecord record;
    Require(
        CorvantisParameters(writing.recording, epoch.number, entry, component, &record, &problem),
        problem);
    CorvantisTypeInfo type;
    CorvantisType(record.type, &type);
    Json json = {{"type", type.name}};
    if (record.type != ITC_STIMULUS_SUMMED) {
        AddRecordValues(json, record.type, record.record);
        return json;
    }
    json["components"] = Json::array();
    for (int32_t k = 0; k < record.components; ++k) {
        json["components"].push_back(RecordOf(writing, epoch, entry, k));
    }
    return json;
}

Json Conductance(Writing& writing, const Epoch& epoch, int32_t entry, int32_t which) {
    CorvantisProblem problem = {};
    std::vector<float> values(static_cast<size_t>(epoch.info.points));
    Require(CorvantisConductance(writing.recording, epoch.number, entry, which, 0,
                                 epoch.info.points, values.data(), &problem),
            problem);
    Json list = Json::array();
    for (const float value : values) list.push_back(NumberOf(value));
    return list;
}

Json StimulusOf(Writing& writing, const Epoch& epoch, int32_t entry) {
    Json stimulus = RecordOf(writing, epoch, entry, -1);
    if (epoch.info.stimulusTypes[entry] == ITC_STIMULUS_DYNAMIC_CLAMP) {
        stimulus["excitatory"] = Conductance(writing, epoch, entry, CORVANTIS_EXCITATORY);
        stimulus["inhibitory"] = Conductance(writing, epoch, entry, CORVANTIS_INHIBITORY);
    }
    return stimulus;
}

// Whether a stimulus can be played again at all, and whether it is the one that was.
bool IsReproducible(Writing& writing, const Epoch& epoch) {
    CorvantisDoubt doubt = {};
    CorvantisProblem problem = {};
    int16_t none;
    const int32_t result = CorvantisStimulus(writing.recording, epoch.number, CORVANTIS_ALL_ENTRIES,
                                             0, 0, &none, 0, &doubt, &problem);
    if (result == CORVANTIS_NO_STIMULUS) {
        Remark(writing, epoch, fmt::format("left out: {}", problem.text + problem.reason));
        return false;
    }
    Require(result, problem);
    const bool isHarmless = doubt.reason == CORVANTIS_NO_DOUBT ||
                            doubt.reason == CORVANTIS_RESTS_ON_ORDER ||
                            doubt.reason == CORVANTIS_FOLLOWED_CELL;
    if (!isHarmless) Remark(writing, epoch, doubt.text);
    return true;
}

// A text as UTF-8 may be longer than it was, and beside a digest there is less room. What is cut
// off begins with a character's first byte.
bool Shorten(std::string& comment, size_t room) {
    if (comment.size() <= room) return false;
    while (room > 0 && (comment[room] & 0xC0) == 0x80) --room;
    comment.resize(room);
    return true;
}

std::string CommentOf(const char* bytes) {
    const std::string_view all(bytes, ITC_COMMENT_LENGTH);
    return reading::DisplayText(all.substr(0, std::min(all.find('\0'), all.size())));
}

// Times are stored as floats, and a pause is no more exact than they are [s].
double AsExactAs(float time, double pause) {
    const double spacing = double{std::nextafter(time, std::numeric_limits<float>::max())} - time;
    const double step = std::max(1e-6, std::pow(10, std::ceil(std::log10(spacing))));
    return std::round(pause / step) * step;
}

// [s]; nothing where the epoch's time is not behind the one before, or a day later.
std::optional<double> PauseBefore(const Epoch& epoch, double behind) {
    const double pause = double{epoch.header.epochTime} - behind;
    if (!(pause > 0 && pause < 24 * 3600)) return std::nullopt;
    return AsExactAs(epoch.header.epochTime, pause);
}

double Seconds(const Epoch& epoch) {
    return 1e-6 * epoch.header.samplingInterval * epoch.header.epochPoints;
}

Json EpochJson(Writing& writing, const Epoch& epoch) {
    Json json = Json::object();
    std::string comment = CommentOf(epoch.header.epochComment);
    if (Shorten(comment, ITC_COMMENT_LENGTH - 1))
        Remark(writing, epoch, "its comment is shortened");
    if (!comment.empty()) json["comment"] = WithoutPlaceholders(comment);
    json["samplingInterval"] = epoch.header.samplingInterval;
    json["epochPoints"] = epoch.header.epochPoints;
    const std::optional<double> pause = PauseBefore(epoch, writing.behind);
    if (pause) json["pause"] = ValueText(*pause, "s");
    AddHeaderValues(json, epoch.header);
    json["stimuli"] = Json::object();
    for (int32_t entry = 0; entry < epoch.info.entries; ++entry) {
        std::string name = ChannelName(writing, epoch, entry);
        if (json["stimuli"].contains(name)) {
            Remark(writing, epoch, "two of its channels are the same one");
            continue;
        }
        json["stimuli"][name] = StimulusOf(writing, epoch, entry);
    }
    return json;
}

bool ReadHeader(Writing& writing, Epoch& epoch) {
    CorvantisProblem problem = {};
    const int32_t result = CorvantisEpoch(writing.recording, epoch.number, &epoch.info, &problem);
    if (result == CORVANTIS_DAMAGED) {
        Remark(writing, epoch, fmt::format("left out: {}", problem.text + problem.reason));
        return false;
    }
    Require(result, problem);
    Require(CorvantisEpochHeader(writing.recording, epoch.number, &epoch.header, &problem),
            problem);
    return true;
}

Json Epochs(Writing& writing) {
    Json epochs = Json::array();
    for (int64_t number = 0; number < CorvantisEpochs(writing.recording); ++number) {
        Epoch epoch = {number, {}, {}};
        if (!ReadHeader(writing, epoch)) continue;
        if (IsReproducible(writing, epoch)) epochs.push_back(EpochJson(writing, epoch));
        // By the pause that was written, so that what was rounded does not add up.
        const std::optional<double> pause = PauseBefore(epoch, writing.behind);
        writing.behind =
            (pause ? writing.behind + *pause : double{epoch.header.epochTime}) + Seconds(epoch);
    }
    return epochs;
}

std::string FileCommentOf(const ITCFileHeader& header, WrittenProtocol& written) {
    std::string comment = OwnComment(CommentOf(header.fileComment));
    if (Shorten(comment, CommentRoom())) {
        written.remarks.push_back(fmt::format(
            "its comment is shortened to {} bytes, for the digest beside it", comment.size()));
    }
    return comment;
}

std::string Written(const std::string& recording, const Json& protocol,
                    const std::vector<std::string>& remarks) {
    std::string text = "// The protocol of " + reading::DisplayText(recording) +
                       ": numbers are DAC codes and points, as they were stored.\n";
    for (const std::string& remark : remarks) text += "// " + reading::DisplayText(remark) + "\n";
    return text + protocol.dump(1, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace

WrittenProtocol ProtocolOf(const std::string& recording) {
    const tool::DataFile opened(recording);
    ITCFileHeader header;
    Require(CorvantisFileHeader(opened.Recording(), &header), {});
    WrittenProtocol written;
    Writing writing = {opened.Recording(), written};
    Json epochs = Epochs(writing);
    Json protocol = {{"comment", FileCommentOf(header, written)},
                     {"channels", writing.channelList},
                     {"epochs", std::move(epochs)}};
    written.text = Written(recording, protocol, written.remarks);
    return written;
}

}  // namespace corvantis::rig
