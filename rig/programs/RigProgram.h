// The programs corvantis-record and corvantis-protocol, their command lines as functions.
#pragma once

#include <CLI/CLI.hpp>

#include "output/Terminal.h"

namespace corvantis::rig {

using CommandLine = int(int argc, char** argv, tool::Terminal& terminal);

// These throw Failures; the result is the exit code.
CommandLine RunRecordLine;
CommandLine RunProtocolLine;

// Help is a wanted result, everything else a message; the exit code.
int EndOfParsing(const CLI::App& app, const CLI::ParseError& end, const tool::Terminal& terminal);

// On the standard streams, each failure as a line.
int RunGuarded(CommandLine& line, int argc, char** argv);

}  // namespace corvantis::rig
