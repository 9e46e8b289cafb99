// Running the tool in a folder of its own: its command line in this process, or the program itself.
#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "FileBytes.h"
#include "LibrarySession.h"
#include "commands/CommandLine.h"

namespace corvantis_test {

// File names in these tests are relative to the folder.
class ToolTest : public testing::Test {
  protected:
    ToolTest() { std::filesystem::current_path(folder.path); }
    ~ToolTest() override { std::filesystem::current_path(before); }

    const std::filesystem::path before = std::filesystem::current_path();
    const TemporaryFolder folder;
};

struct ToolRun {
    int code = -1;
    std::string results;
    std::string messages;
};

inline std::string TextOf(FILE* stream) {
    std::fflush(stream);
    const Bytes bytes = Content(stream);
    return {bytes.begin(), bytes.end()};
}

// Arguments as in a shell, each behind one blank.
inline ToolRun RunTool(const std::string& line) {
    std::vector<std::string> arguments = {"corvantis"};
    std::istringstream words(line);
    for (std::string word; std::getline(words, word, ' ');) arguments.push_back(word);
    std::vector<char*> argv;
    for (std::string& argument : arguments) argv.push_back(argument.data());
    const Stream results = StreamOver(), messages = StreamOver();
    corvantis::tool::Terminal terminal{results.get(), messages.get()};
    const int code =
        corvantis::tool::RunCommandLine(static_cast<int>(argv.size()), argv.data(), terminal);
    return {code, TextOf(results.get()), TextOf(messages.get())};
}

// A part of what a command says of its first recording, as JSON.
inline nlohmann::json PartOf(const std::string& line, const char* part) {
    return nlohmann::json::parse(RunTool(line).results).at("recordings").at(0).at(part);
}

inline bool Contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

}  // namespace corvantis_test
