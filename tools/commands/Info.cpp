// Showing files as text or JSON, all epochs or those that are asked for.
#include "commands/Info.h"

#include <utility>

#include "commands/EpochList.h"
#include "commands/Findings.h"
#include "output/EpochText.h"
#include "output/RecordingJson.h"

namespace corvantis::tool {
namespace {

// show(epoch) and lost(epochs), of all or of those that are listed.
template <class Show, class Lost>
void VisitEpochs(const DataFile& file, const std::string& list, Show show, Lost lost) {
    const auto visit = [&](int64_t number) {
        if (const auto epoch = ReadEpoch(file, number)) {
            show(*epoch);
            return number;
        }
        LostEpochs gap = LostFrom(file, number);
        if (!list.empty()) gap.last = number;
        lost(gap);
        return gap.last;
    };
    const int64_t count = file.Info().epochs;
    if (list.empty()) {
        for (int64_t number = 0; number < count; ++number) number = visit(number);
    } else {
        for (const int64_t number : ParseEpochList(list, count)) visit(number);
    }
}

void PrintInFull(const DataFile& file, const std::string& list, const Terminal& terminal) {
    VisitEpochs(
        file, list, [&](const EpochRecords& epoch) { PrintEpoch(file, epoch, terminal); },
        [&](const LostEpochs& lost) {
            throw Failure(file.Name(),
                          fmt::format("epoch {} cannot be shown: {}", lost.first, lost.text));
        });
}

Findings PrintText(const DataFile& file, const InfoOptions& options, const Terminal& terminal) {
    if (options.epochs.empty()) {
        PrintFile(file, terminal);
        PrintEpochLines(file, terminal);
    } else {
        PrintInFull(file, options.epochs, terminal);
    }
    return FindingsOf(file);
}

// One epoch at a time, so that a long file does not have to fit into memory. Should the file fail
// on the way, what has been printed stays JSON, and says so at its end.
Findings PrintJson(const DataFile& file, const InfoOptions& options, const Terminal& terminal,
                   int& code) {
    if (!options.epochs.empty()) ParseEpochList(options.epochs, file.Info().epochs);
    Findings findings;
    Json problem;
    std::string head = RecordingJson(file).dump();
    head.pop_back();
    terminal.Print("{},\n\"epochs\":[", head);
    try {
        const char* lineBreak = "\n";
        const auto print = [&](const Json& epoch) {
            terminal.Print("{}{}", std::exchange(lineBreak, ",\n"), epoch.dump());
        };
        VisitEpochs(
            file, options.epochs, [&](const EpochRecords& epoch) { print(EpochJson(file, epoch)); },
            [&](const LostEpochs& lost) { print(LostJson(lost)); });
        findings = FindingsOf(file);
    } catch (const Failure& failure) {
        terminal.Say("{}\n", failure.what());
        problem = FailureJson(file.Name(), failure)["problem"];
        code = kUnusable;
    }
    terminal.Print("],\n\"isClean\":{},\"findings\":{},\"problem\":{}}}",
                   problem.is_null() && AreClean(findings), FindingsJson(findings).dump(),
                   problem.dump());
    return findings;
}

Outcome ShowFile(const DataFile& file, const InfoOptions& options, const Terminal& terminal) {
    int code = kFine;
    const Findings findings = options.choice.json ? PrintJson(file, options, terminal, code)
                                                  : PrintText(file, options, terminal);
    if (!AreClean(findings) && !terminal.quiet) {
        terminal.Say("{}: damaged; shown is what lies in the file, see corvantis check\n",
                     file.Name());
    }
    return {code, file.Info().epochs, std::ssize(findings)};
}

}  // namespace

int RunInfo(const InfoOptions& options, const Terminal& terminal) {
    return RunOnFiles(options.choice, "\n", terminal,
                      [&](const DataFile& file, const FoundFile& /*found*/, const Terminal& spool) {
                          return ShowFile(file, options, spool);
                      });
}

}  // namespace corvantis::tool
