// The command corvantis record: from the protocol file to the recording.
#include <fmt/format.h>

#include <optional>

#include "files/Failure.h"
#include "files/NewFile.h"
#include "player/PlayerLibrary.h"
#include "programs/LibraryOutput.h"
#include "programs/PlanTable.h"
#include "programs/RecordOptions.h"
#include "programs/Watching.h"
#include "protocol/FieldRules.h"
#include "session/FileComment.h"
#include "session/Interruption.h"
#include "session/Recorder.h"
#include "session/Resumption.h"

namespace corvantis::rig {
namespace {

using tool::Failure;

constexpr char kSimulated[] = "simulated";
constexpr char kSimulatedLibrary[] = "CorvantisSimulatedPlayer";

PlayerLibrary LoadPlayer(const Protocol& protocol) {
    const Node rig = protocol.Root()["rig"];
    const Node node = rig ? rig["player"] : rig;
    const std::string name = node ? node.value->text : kSimulated;
    std::string problem;
    std::optional<PlayerLibrary> library =
        PlayerLibrary::Load(name == kSimulated ? kSimulatedLibrary : name, problem);
    if (!library) (node ? node : protocol.Root()).Fail(problem);
    return std::move(*library);
}

Settings RigSettings(const Protocol& protocol) {
    const Node rig = protocol.Root()["rig"];
    return SettingsOf(rig ? rig["settings"] : rig, {});
}

int32_t DeviceOf(const Protocol& protocol) {
    const Node rig = protocol.Root()["rig"];
    const Node device = rig ? rig["device"] : rig;
    return device ? static_cast<int32_t>(device.value->number) : 0;
}

// Of the rig, which are returned, and of each epoch: by what the player says that it knows.
Settings CheckAllSettings(const RecordingPlan& plan, const PlayerLibrary& library) {
    for (const Occurrence& epoch : plan.epochs) {
        const Node node = plan.protocol.FieldOf(plan.protocol.Epoch(epoch.epoch), "settings");
        CheckSettings(SettingsOf(node, epoch.names), library.Settings());
    }
    Settings settings = RigSettings(plan.protocol);
    CheckSettings(settings, library.Settings());
    return settings;
}

void OpenRig(const Settings& settings, Session& session, OpenPlayer& player) {
    const std::vector<PlayerSetting> given = PlayerSettings(settings);
    const Answer answer = player.Open(session.Device(), given);
    if (answer) return;
    const auto index = static_cast<size_t>(answer.setting);
    if (answer.setting >= 0 && index < settings.size()) settings[index].node.Fail(answer.text);
    throw Failure("the interface cannot be opened: " + answer.text);
}

std::string CommentOf(const RecordingPlan& plan, bool isSimulated) {
    const Node comment = plan.protocol.Root()["comment"];
    if (comment && comment.value->text.size() > CommentRoom()) {
        comment.Fail(fmt::format("is of {} bytes, and beside the protocol's digest {} can be kept",
                                 comment.value->text.size(), CommentRoom()));
    }
    return FileComment(
        comment ? comment.value->text : std::string(), isSimulated,
        {plan.protocol.Digest(), static_cast<int64_t>(plan.first), plan.drawnFrom < plan.first});
}

// Before the recording: one without its protocol could not be gone on with.
void KeepProtocol(const std::string& text, const std::string& path) {
    tool::NewFile file(path, false);
    std::fwrite(text.data(), 1, text.size(), file.Get());
    file.Commit();
}

void RequireNew(const std::string& path) {
    if (tool::Exists(path)) throw Failure(path, "exists, and recordings are never overwritten");
}

void RefuseWrapping(const PlanTotals& totals, const RecordOptions& options) {
    if (totals.wrapped == 0 || options.allowWrapping) return;
    throw Failure(
        fmt::format("{} points in {} epochs, first in epoch {}, are beyond the converter's "
                    "range and would wrap to its other end; see --check, or allow it by "
                    "--allow-wrapping",
                    totals.wrapped, totals.wrappedEpochs, totals.firstWrapped));
}

// A file gives noise back from its own epochs: fresh generators are what makes a resumed one whole
// in itself.
void TellOfNoise(const PlanTotals& totals, const RecordingPlan& plan, const RecordOptions& options,
                 const tool::Terminal& terminal) {
    if (plan.drawnFrom < plan.first && options.played.empty()) {
        throw Failure(
            "--continue-noise needs --played FILE: the recording cannot give noise back that "
            "began in another one");
    }
    if (plan.first == 0 || plan.drawnFrom < plan.first || !totals.hasNoiseThatGoesOn) return;
    terminal.Say(
        "{}: noise with a seed below 0 begins anew, so that the file gives it back; see "
        "--continue-noise\n",
        options.output);
}

// Each epoch once, as an uninterrupted recording would have.
void DrawEarlierNoise(const RecordingPlan& plan, Session& session) {
    for (size_t k = plan.drawnFrom; k < plan.first; ++k) {
        session.Compute(PlanEpoch(plan.protocol, plan.epochs[k]), 0);
    }
}

int Record(const RecordOptions& options, const RecordingPlan& plan,
           const tool::Terminal& terminal) {
    const PlanTotals totals = SurveyPlan(plan, nullptr);
    RefuseWrapping(totals, options);
    TellOfNoise(totals, plan, options, terminal);
    const PlayerLibrary library = LoadPlayer(plan.protocol);
    const Settings settings = CheckAllSettings(plan, library);
    RequireNew(options.output);
    RequireNew(ProtocolPath(options.output));
    const std::string comment = CommentOf(plan, library.Calls().simulated != 0);
    CountInterruptions();
    Session session(DeviceOf(plan.protocol), totals.samples);
    DrawEarlierNoise(plan, session);
    OpenPlayer player(library);
    OpenRig(settings, session, player);
    KeepProtocol(plan.protocol.Text(), ProtocolPath(options.output));
    session.CreateFile(options.output, comment);
    const Watching watching(options.watch, options.output);
    const RecordingChoice choice = {options.output, options.played, options.waitForRoom};
    Recorder recorder(plan, choice, session, player, terminal);
    return recorder.Run() ? tool::kFine : tool::kFindings;
}

// Settings too, where the player can be loaded here: a check needs no device.
void CheckPlayer(const RecordingPlan& plan, const tool::Terminal& terminal) {
    if (!plan.protocol.Root()["rig"]) return;
    std::optional<PlayerLibrary> library;
    try {
        library.emplace(LoadPlayer(plan.protocol));
    } catch (const Failure& failure) {
        terminal.Say("settings are not checked: {}\n", std::string(failure.what()));
        return;
    }
    CheckAllSettings(plan, *library);
}

int Check(const RecordingPlan& plan, const tool::Terminal& terminal) {
    CheckPlayer(plan, terminal);
    const PlanTotals totals = SurveyPlan(plan, &terminal);
    CommentOf(plan, true);
    const size_t epochs = plan.epochs.size() - plan.first;
    terminal.Print("{} epoch{}, {:.3f} s\n", epochs, epochs == 1 ? "" : "s",
                   1e-6 * static_cast<double>(totals.microseconds));
    return totals.wrapped == 0 ? tool::kFine : tool::kFindings;
}

// The protocol beside the recording that is gone on with, unless another file is named that holds
// the same text.
std::string ProtocolPathOf(const RecordOptions& options,
                           const std::optional<Resumption>& resumption) {
    if (!options.protocol.empty()) return options.protocol;
    if (!resumption) throw Failure("a PROTOCOL is needed (see --help)");
    return resumption->protocolPath;
}

void RequireSame(const Protocol& protocol, const Resumption& resumption,
                 const std::string& resumed) {
    if (protocol.Digest() == resumption.origin.digest) return;
    throw Failure(protocol.File(), "is not the protocol that " + resumed + " was recorded by");
}

}  // namespace

int RunRecord(const RecordOptions& options, const tool::Terminal& terminal) {
    if (options.schema) {
        terminal.Print("{}", SchemaText());
        return tool::kFine;
    }
    std::optional<Resumption> resumption;
    if (!options.resumed.empty()) resumption = ResumptionOf(options.resumed);
    const std::string path = ProtocolPathOf(options, resumption);
    const Protocol protocol(path, ReadText(path));
    if (resumption) RequireSame(protocol, *resumption, options.resumed);
    RecordingPlan plan = {protocol, OccurrencesOf(protocol)};
    if (plan.epochs.empty()) throw Failure(path, "has no epochs");
    plan.first = resumption ? static_cast<size_t>(resumption->origin.first) : 0;
    plan.drawnFrom = options.continueNoise ? 0 : plan.first;
    if (plan.first >= plan.epochs.size()) {
        throw Failure(options.resumed, "holds the protocol's last epoch already");
    }
    if (options.check) return Check(plan, terminal);
    if (options.output.empty()) throw Failure("-o FILE is needed (see --help)");
    const LibraryOutput elsewhere;
    return Record(options, plan, terminal);
}

}  // namespace corvantis::rig
