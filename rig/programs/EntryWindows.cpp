// The beginning of a program on Windows, whose arguments come in 16-bit characters.
#include <string>
#include <vector>

#include "ITCUtilities/WidePath.h"
#include "programs/Entry.h"

extern "C" int wmain(int argc, wchar_t** argv) {
    std::vector<std::string> texts;
    for (int i = 0; i < argc; ++i) texts.push_back(corvantis::NarrowText(argv[i]));
    std::vector<char*> arguments;
    for (std::string& text : texts) arguments.push_back(text.data());
    arguments.push_back(nullptr);
    return corvantis::rig::RunProgram(argc, arguments.data());
}
