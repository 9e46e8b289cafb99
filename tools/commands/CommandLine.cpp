// Sub-commands and options, with their help.
#include "commands/CommandLine.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <sstream>
#include <string_view>

#include "commands/Check.h"
#include "commands/Export.h"
#include "commands/Info.h"
#include "commands/Repair.h"
#include "files/Failure.h"
#include "files/TemporaryFile.h"
#include "text/Text.h"

namespace corvantis::tool {
namespace {

constexpr std::array<std::string_view, 4> kCommands = {"info", "check", "repair", "export"};

constexpr char kDescription[] = R"(Looks at, checks, repairs and exports data files of Corvantis.
Epochs are counted from 0, by the file's own table. Folders stand for all recordings in them. Results go to standard output, messages to standard error.

The exit status is 0 if all is well, 1 if check has findings, repair dropped something or export
could not give an epoch or a stimulus for certain, 2 if a file cannot be used or the command line is
wrong. Of several files it is the worst.

Any other sub-command X runs the program corvantis-X that lies beside this one or in the path: record
records the epochs of a protocol, and protocol writes the protocol of a recording (corvantis record --help).)";

constexpr char kExamplesHeading[] = "Examples:\n";

constexpr char kExamples[] = R"(  $ corvantis info cell5.dat
  $ corvantis check recordings/
  $ corvantis repair cell5.dat -o cell5-repaired.dat
  $ corvantis export cell5.dat -e 3 --stimulus -o a.csv)";

constexpr char kInfoExamples[] = R"(  The file header and a line per epoch:
    $ corvantis info cell5.dat
  These epochs in full, with the formulas of their units:
    $ corvantis info cell5.dat -e 0,3-7
  All of a folder for another program:
    $ corvantis info --json recordings/)";

constexpr char kCheckExamples[] = R"(  What is wrong: where, found, expected:
    $ corvantis check *.dat
  Also which stimuli cannot be computed for certain, and why:
    $ corvantis check --stimulus --json a.dat)";

constexpr char kRepairExamples[] = R"(  All complete epochs:
    $ corvantis repair cell5.dat -o whole.dat
  And what there is of the last one:
    $ corvantis repair cell5.dat -o whole.dat --keep-partial)";

constexpr char kExportExamples[] = R"(  In mV and pA, as CSV on standard output:
    $ corvantis export cell5.dat -e 3
  With the stimulus, as an array:
    $ corvantis export cell5.dat -e 3 --stimulus -o a.npy
  All epochs, in volts, as a-00.csv, a-01.csv and so on:
    $ corvantis export cell5.dat --all --volts -o a.csv
  All epochs of all files, as tables/day1/cell5.dat/epoch-00.npy and so on; after an interruption
  the same again writes what is missing:
    $ corvantis export recordings/ -o tables/ --format npy --resume)";

// Plain enough for people, and in the form that help2man takes for a manual page.
class HelpFormatter : public CLI::Formatter {
  public:
    std::string make_option_opts(const CLI::Option* option) const override {
        const std::string type = option->get_type_name();
        return type.empty() ? "" : " " + type;
    }
    std::string make_expanded(const CLI::App* command) const override {
        std::ostringstream text;
        text << "corvantis " << command->get_name() << " [OPTIONS]";
        for (const CLI::Option* option : command->get_options()) {
            if (option->get_positional()) text << " " << make_option_usage(option);
        }
        text << ":\n  " << command->get_description() << "\n\n";
        for (const CLI::Option* option : command->get_options()) {
            text << make_option(option, option->get_positional());
        }
        // Under their heading, the manual page would move them behind all sub-commands.
        text << "\n" << command->get_footer().substr(sizeof(kExamplesHeading) - 1) << "\n\n";
        return text.str();
    }
    // A heading of its own would run into the first sub-command's on the manual page.
    std::string make_subcommands(const CLI::App* app, CLI::AppFormatMode mode) const override {
        if (mode != CLI::AppFormatMode::All) return CLI::Formatter::make_subcommands(app, mode);
        std::string text = "\n";
        for (const CLI::App* command : app->get_subcommands({})) text += make_expanded(command);
        return text;
    }
};

struct Options {
    InfoOptions info;
    CheckOptions check;
    RepairOptions repair;
    ExportOptions exported;
    bool quiet = false;
};

CLI::App* AddCommand(CLI::App& app, Options& options, const char* name, const char* description,
                     const char* examples) {
    CLI::App* command = app.add_subcommand(name, description);
    command->set_help_all_flag();
    command->footer(std::string(kExamplesHeading) + examples);
    command->add_flag("-q,--quiet", options.quiet, "No progress, and no word if all is well");
    return command;
}

void AddFiles(CLI::App* command, FileChoice& choice) {
    command->add_option("FILE", choice.files, "Data files, or folders of them")
        ->required()
        ->type_name("");
    command
        ->add_option("-j,--jobs", choice.jobs,
                     "Files at a time, as many as there are processors unless given")
        ->check(CLI::Range(1, static_cast<int>(kMostTemporaryFiles)).description(""))
        ->type_name("N");
}

void AddInfo(CLI::App& app, Options& options) {
    CLI::App* command =
        AddCommand(app, options, "info",
                   "Show the file header and a line per epoch, or epochs in full", kInfoExamples);
    AddFiles(command, options.info.choice);
    command->add_option("-e,--epoch", options.info.epochs, "Epochs to show in full: 0,3-7")
        ->type_name("LIST");
    command->add_flag("--json", options.info.choice.json, "Results as JSON, every epoch in full");
}

void AddCheck(CLI::App& app, Options& options) {
    CLI::App* command =
        AddCommand(app, options, "check",
                   "Compare header and table with what really lies in the files", kCheckExamples);
    AddFiles(command, options.check.choice);
    command->add_flag("--stimulus", options.check.stimulus,
                      "Also compute each stimulus, twice and in different orders");
    command->add_flag("--json", options.check.choice.json, "Results as JSON");
}

void AddRepair(CLI::App& app, Options& options) {
    CLI::App* command = AddCommand(
        app, options, "repair",
        "Write a sound file with every complete epoch; FILE is never changed", kRepairExamples);
    command->add_option("FILE", options.repair.file, "Damaged data file")
        ->required()
        ->type_name("");
    command->add_option("-o,--output", options.repair.output, "File to write, required")
        ->required()
        ->type_name("OUT");
    command->add_flag("--keep-partial", options.repair.keepPartial,
                      "Also keep a last epoch that was cut short, as far as its points are whole");
    command->add_flag("--force", options.repair.force, "Replace OUT if it exists");
    command->add_flag("--json", options.repair.json, "Results as JSON");
}

void AddUnits(CLI::App* command, ExportOptions& exported) {
    auto* raw = command->add_flag("--raw,--counts", exported.raw, "Converter counts");
    auto* volts = command->add_flag("--volts", exported.volts, "Volts at the converter");
    auto* units = command->add_flag("--units")->description(
        "The entries' own units, as without any of these; volts where there are none");
    raw->excludes(volts)->excludes(units);
    volts->excludes(units);
}

void AddExport(CLI::App& app, Options& options) {
    ExportOptions& exported = options.exported;
    CLI::App* command = AddCommand(app, options, "export",
                                   "Write epochs as tables: time in seconds, then a column per "
                                   "sequence entry in its own units",
                                   kExportExamples);
    AddFiles(command, exported.choice);
    auto* epochs =
        command->add_option("-e,--epoch", exported.epochs, "Epochs: 0,3-7")->type_name("LIST");
    command->add_flag("--all", exported.all, "All epochs")->excludes(epochs);
    command
        ->add_option("--format", exported.format,
                     "csv, or npy, an array of doubles; else the ending of OUT says which")
        ->check(CLI::IsMember({"csv", "npy"}).description(""))
        ->type_name("FORMAT");
    command
        ->add_option("-o,--output", exported.output,
                     "File to write, - for standard output; of several epochs each gets one, "
                     "such as OUT-03.csv; with a slash at its end a folder, in which each FILE "
                     "gets one, for all epochs unless some are named")
        ->type_name("OUT");
    AddUnits(command, exported);
    command->add_flag("--stimulus", exported.stimulus,
                      "Also the computed stimuli; of dynamic clamp the conductances");
    auto* force = command->add_flag("--force", exported.force, "Replace files that exist");
    command->add_flag("--resume", exported.resume, "Leave files that exist, and write the others")
        ->excludes(force);
}

int Run(const CLI::App& app, const Options& options, const Terminal& terminal) {
    if (app.got_subcommand("info")) return RunInfo(options.info, terminal);
    if (app.got_subcommand("check")) return RunCheck(options.check, terminal);
    if (app.got_subcommand("repair")) return RunRepair(options.repair, terminal);
    return RunExport(options.exported, terminal);
}

// Help and version are wanted results, everything else is a message.
int EndOfParsing(const CLI::App& app, const CLI::ParseError& end, const Terminal& terminal) {
    std::ostringstream results, messages;
    const int code = app.exit(end, results, messages);
    terminal.Print("{}", results.str());
    if (code == 0) return kFine;
    terminal.Say("{} (see --help)\n", reading::DisplayText(end.what()));
    return kUnusable;
}

}  // namespace

int RunCommandLine(int argc, char** argv, Terminal& terminal) {
    CLI::App app(kDescription, "corvantis");
    Options options;
    app.formatter(std::make_shared<HelpFormatter>());
    app.allow_windows_style_options(false);  // a slash begins a path
    app.set_help_all_flag("--help-all", "Help of all sub-commands");
    app.set_version_flag("--version", "corvantis " CORVANTIS_VERSION);
    app.footer(std::string(kExamplesHeading) + kExamples);
    app.require_subcommand(1);
    AddInfo(app, options);
    AddCheck(app, options);
    AddRepair(app, options);
    AddExport(app, options);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& end) {
        return EndOfParsing(app, end, terminal);
    }
    terminal.quiet = options.quiet;
    try {
        return Run(app, options, terminal);
    } catch (const Failure& failure) {
        terminal.Say("{}\n", reading::DisplayText(failure.what()));
        return kUnusable;
    }
}

bool NamesExternalCommand(int argc, char** argv) {
    if (argc < 2) return false;
    const std::string_view first = argv[1];
    const bool isName = !first.empty() && first.front() != '-';
    return isName && std::find(kCommands.begin(), kCommands.end(), first) == kCommands.end();
}

}  // namespace corvantis::tool
