// The program corvantis-protocol: its command line.
#include <CLI/CLI.hpp>

#include "files/Failure.h"
#include "files/NewFile.h"
#include "programs/RigProgram.h"
#include "text/Text.h"
#include "writing/ProtocolWriter.h"

namespace corvantis::rig {
namespace {

constexpr char kDescription[] =
    R"(Write the protocol of a recording, with every amount in DAC codes and points as it was stored, so that corvantis record plays the same stimuli again, bit for bit.

The exit status is 0; 1 if something cannot be played again as it was, which is said; 2 if the recording cannot be used.)";

struct Options {
    std::string file;
    std::string output;
};

void Write(const Options& options, const std::string& text, const tool::Terminal& terminal) {
    if (options.output.empty()) return terminal.Print("{}", text);
    tool::NewFile file(options.output, false);
    std::fwrite(text.data(), 1, text.size(), file.Get());
    file.Commit();
}

int Run(const Options& options, const tool::Terminal& terminal) {
    const WrittenProtocol written = ProtocolOf(options.file);
    for (const std::string& remark : written.remarks) {
        terminal.Say("{}: {}\n", reading::DisplayText(options.file), reading::DisplayText(remark));
    }
    Write(options, written.text, terminal);
    return written.remarks.empty() ? tool::kFine : tool::kFindings;
}

}  // namespace

int RunProtocolLine(int argc, char** argv, tool::Terminal& terminal) {
    CLI::App app(kDescription, "corvantis protocol");
    Options options;
    app.allow_windows_style_options(false);
    app.add_option("FILE", options.file, "The recording")->required()->type_name("");
    app.add_option("-o,--output", options.output, "A new file, instead of standard output")
        ->type_name("PROTOCOL");
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& end) {
        return EndOfParsing(app, end, terminal);
    }
    return Run(options, terminal);
}

}  // namespace corvantis::rig
