// The program corvantis-record: its command line.
#include <CLI/CLI.hpp>

#include "programs/RecordOptions.h"
#include "programs/RigProgram.h"

namespace corvantis::rig {
namespace {

constexpr char kDescription[] =
    R"(Record the epochs of a protocol. PROTOCOL is JSON, with comments; docs/protocols.md tells what it may hold. Beside FILE its text is kept as FILE.protocol.json. Nothing is ever overwritten.

Ctrl-C ends the recording after the epoch, twice at once; what was saved stays. The exit status is 0 if all was recorded, 1 if not or if the check has findings, 2 if nothing can be recorded.)";

constexpr char kExamples[] = R"(Examples:
  What would be played, without a device:
    $ corvantis record steps.json --check
  The recording:
    $ corvantis record steps.json -o cell5.dat
  What is left of it after an interruption:
    $ corvantis record --resume cell5.dat -o cell5b.dat)";

void AddOptions(CLI::App& app, RecordOptions& options) {
    app.add_option("PROTOCOL", options.protocol, "The protocol file")->type_name("");
    app.add_option("-o,--output", options.output, "The recording, a new file")->type_name("FILE");
    app.add_flag("--check", options.check, "Say what would be played, and play nothing");
    CLI::Option* const resume =
        app.add_option("--resume", options.resumed,
                       "Go on where this recording ended, by the protocol beside it")
            ->type_name("FILE");
    app.add_flag(
           "--continue-noise", options.continueNoise,
           "Let noise with a seed below 0 go on as if nothing had ended; the recording cannot "
           "give such noise back, so that --played is needed")
        ->needs(resume);
    app.add_flag("--watch", options.watch, "Show the recording in the browser as it grows");
    app.add_flag("--allow-wrapping", options.allowWrapping,
                 "Play levels beyond the converter's range as its low 16 bits");
    app.add_option("--wait-for-room", options.waitForRoom,
                   "How long to try again where a full disk refuses an epoch, 60 unless given")
        ->type_name("SECONDS")
        ->check(CLI::Range(0.0, 86400.0).description(""));
    app.add_option("--played", options.played,
                   "Also keep the samples as played, for comparison, in this file")
        ->type_name("FILE");
    app.add_flag("--schema", options.schema, "Print the JSON schema of protocols");
    app.add_flag("-q,--quiet", options.quiet, "No line an epoch");
}

}  // namespace

int RunRecordLine(int argc, char** argv, tool::Terminal& terminal) {
    CLI::App app(kDescription, "corvantis record");
    RecordOptions options;
    app.allow_windows_style_options(false);
    app.footer(kExamples);
    AddOptions(app, options);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& end) {
        return EndOfParsing(app, end, terminal);
    }
    terminal.quiet = options.quiet;
    return RunRecord(options, terminal);
}

}  // namespace corvantis::rig
