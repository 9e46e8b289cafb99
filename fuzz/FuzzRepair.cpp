// Any bytes as a damaged recording: what `corvantis repair` makes of it must pass `corvantis
// check`.
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "Session.h"
#include "commands/Check.h"
#include "commands/Repair.h"
#include "files/Failure.h"
#include "output/Terminal.h"

namespace {

// A folder in memory where there is one; repairs replace their output at each input.
class OutputFolder {
  public:
    OutputFolder() { std::filesystem::create_directories(path_); }
    OutputFolder(const OutputFolder&) = delete;
    OutputFolder& operator=(const OutputFolder&) = delete;
    ~OutputFolder() { std::filesystem::remove_all(path_); }
    std::string File() const { return path_ / "repaired"; }

  private:
    static std::filesystem::path Base() {
        const std::filesystem::path memory = "/dev/shm";
        return is_directory(memory) ? memory : std::filesystem::temp_directory_path();
    }
    const std::filesystem::path path_ = Base() / ("fuzz-repair-" + std::to_string(getpid()));
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static FILE* const nowhere = std::fopen("/dev/null", "w");
    static const OutputFolder folder;
    static const std::string output = folder.File();
    static const corvantis::tool::Terminal terminal = {nowhere, nowhere, true};
    corvantis_fuzz::StartLibrary();
    const corvantis_fuzz::MemoryFile file(data, size);
    try {
        const bool keepPartial = size % 2 == 0;
        corvantis::tool::RunRepair({file.Path(), output, keepPartial, true, false}, terminal);
    } catch (const corvantis::tool::Failure&) {
        return 0;
    }
    if (corvantis::tool::RunCheck({{output}, false, false}, terminal) != corvantis::tool::kFine)
        std::abort();
    return 0;
}
