// Showing files as text or JSON, all epochs or those that are asked for.
#include "commands/Info.h"

#include <numeric>
#include <vector>

#include "commands/EpochList.h"
#include "commands/Findings.h"
#include "output/EpochText.h"
#include "output/RecordingJson.h"

namespace corvantis::tool {
namespace {

std::vector<int64_t> ChosenEpochs(const DataFile& file, const std::string& list) {
    const int64_t count = file.Info().epochs;
    if (!list.empty()) return ParseEpochList(list, count);
    std::vector<int64_t> all(static_cast<size_t>(count));
    std::iota(all.begin(), all.end(), int64_t{0});
    return all;
}

void PrintChosen(const DataFile& file, const std::string& list, const Terminal& terminal) {
    for (const int64_t number : ChosenEpochs(file, list)) {
        const auto epoch = ReadEpoch(file, number);
        if (!epoch) {
            throw Failure(file.Name(), fmt::format("epoch {} cannot be shown: {}", number,
                                                   WhyMissing(file, number).text));
        }
        PrintEpoch(file, *epoch, terminal);
    }
}

Findings PrintText(const DataFile& file, const InfoOptions& options, const Terminal& terminal) {
    if (options.epochs.empty()) {
        PrintFile(file, terminal);
        PrintEpochLines(file, terminal);
    } else {
        PrintChosen(file, options.epochs, terminal);
    }
    return FindingsOf(file);
}

// One epoch at a time, so that a long file does not have to fit into memory. Should the file fail
// on the way, what has been printed stays JSON, and says so at its end.
Findings PrintJson(const DataFile& file, const InfoOptions& options, const Terminal& terminal,
                   int& code) {
    const std::vector<int64_t> numbers = ChosenEpochs(file, options.epochs);
    Findings findings;
    Json problem;
    std::string head = RecordingJson(file).dump();
    head.pop_back();
    terminal.Print("{},\n\"epochs\":[", head);
    try {
        const char* lineBreak = "\n";
        for (const int64_t number : numbers) {
            const std::string epoch = EpochJson(file, number).dump();
            terminal.Print("{}{}", lineBreak, epoch);
            lineBreak = ",\n";
        }
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
