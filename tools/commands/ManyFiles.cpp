// Opening files, spooling what is said of them, and the summary.
#include "commands/ManyFiles.h"

#include <algorithm>
#include <thread>
#include <utility>

#include "commands/OrderedRuns.h"
#include "files/TemporaryFile.h"
#include "output/RecordingJson.h"
#include "text/Text.h"

namespace corvantis::tool {
namespace {

struct Spooled {
    Outcome outcome;
    std::string results;
    std::string messages;
};

class Summary {
  public:
    void Add(const Outcome& outcome) {
        if (!outcome.isRecording) {
            ++others_;
            return;
        }
        ++files_;
        failures_ += outcome.code == kUnusable ? 1 : 0;
        epochs_ += outcome.epochs;
        findings_ += outcome.findings;
        code_ = std::max(code_, outcome.code);
    }
    int Code() const { return code_; }
    void Say(const Terminal& terminal) const {
        terminal.Say("files: {}, epochs: {}, findings: {}, failures: {}, no recordings: {}\n",
                     files_, epochs_, findings_, failures_, others_);
    }
    Json ToJson() const {
        return {{"files", files_},
                {"epochs", epochs_},
                {"findings", findings_},
                {"failures", failures_},
                {"others", others_}};
    }

  private:
    int code_ = kFine;
    int64_t files_ = 0;
    int64_t epochs_ = 0;
    int64_t findings_ = 0;
    int64_t failures_ = 0;
    int64_t others_ = 0;
};

Outcome Fail(const FoundFile& found, const Failure& failure, bool json, const Terminal& terminal) {
    if (failure.code == CORVANTIS_NOT_A_RECORDING && !found.isNamed) return {.isRecording = false};
    terminal.Say("{}\n", reading::DisplayText(failure.what()));
    if (json) {
        terminal.Print("{}", FailureJson(reading::DisplayText(found.path), failure).dump());
    }
    return {.code = kUnusable};
}

Outcome RunOnFile(const FoundFile& found, bool json, const Terminal& terminal,
                  const FileWork& work) {
    try {
        if (!found.refusal.empty()) throw Failure(found.path, found.refusal);
        const DataFile file(found.path);
        return work(file, found, terminal);
    } catch (const Failure& failure) {
        return Fail(found, failure, json, terminal);
    } catch (const std::exception& failure) {
        return Fail(found, Failure(found.path, failure.what()), json, terminal);
    }
}

Spooled RunSpooled(const FoundFile& found, bool json, bool quiet, const FileWork& work) {
    Spooled run;
    const Terminal terminal{run.results, run.messages, quiet};
    run.outcome = RunOnFile(found, json, terminal, work);
    return run;
}

size_t ThreadsFor(const FileChoice& choice, size_t files) {
    const size_t wanted =
        choice.jobs > 0 ? static_cast<size_t>(choice.jobs) : std::thread::hardware_concurrency();
    return std::clamp<size_t>(std::min(wanted, files), 1, kMostTemporaryFiles);
}

void RunAll(const FileChoice& choice, const std::vector<FoundFile>& files, const char* separator,
            const Terminal& terminal, const FileWork& work, Summary& summary) {
    Progress progress(terminal, "files", static_cast<int64_t>(files.size()));
    OrderedRuns<Spooled> runs(files.size(), ThreadsFor(choice, files.size()), [&](size_t index) {
        return RunSpooled(files[index], choice.json, terminal.quiet, work);
    });
    bool isFirst = true;
    for (size_t i = 0; i < files.size(); ++i) {
        progress.Reach(static_cast<int64_t>(i));
        const Spooled run = runs.Take();
        summary.Add(run.outcome);
        if (!run.results.empty() || !run.messages.empty()) progress.Clear();
        if (!run.results.empty() && !std::exchange(isFirst, false)) {
            terminal.Print("{}", separator);
        }
        terminal.results.Write(run.results);
        terminal.messages.Write(run.messages);
    }
}

}  // namespace

bool AreMany(const FileChoice& choice) {
    return choice.files.size() > 1 || IsFolder(choice.files.front());
}

int RunOnFiles(const FileChoice& choice, const char* separator, const Terminal& terminal,
               const FileWork& work) {
    return RunOnFiles(choice, FindFiles(choice.files), separator, terminal, work);
}

int RunOnFiles(const FileChoice& choice, const std::vector<FoundFile>& files, const char* separator,
               const Terminal& terminal, const FileWork& work) {
    Summary summary;
    if (choice.json) {
        terminal.Print("{{\"schemaVersion\":{},\"recordings\":[\n", kSchemaVersion);
    }
    if (AreMany(choice)) {
        RunAll(choice, files, choice.json ? ",\n" : separator, terminal, work, summary);
    } else {
        summary.Add(RunOnFile(files.front(), choice.json, terminal, work));
    }
    if (choice.json) terminal.Print("\n],\"summary\":{}}}\n", summary.ToJson().dump());
    if (AreMany(choice) && !terminal.quiet) summary.Say(terminal);
    return summary.Code();
}

}  // namespace corvantis::tool
