// Finding a player's library, and the checks on what it offers.
#include "player/PlayerLibrary.h"

#include <algorithm>

namespace corvantis::rig {
namespace {

// A file that lies beside the program is meant, even if it turns out to be unfit.
std::string WhereToLoad(const std::string& name) {
    if (IsPath(name)) return name;
    const std::string file = LibraryFileName(name);
    const std::string beside = ProgramFolder() + file;
    return FileExists(beside) ? beside : file;
}

const PlayerCalls* CallsOf(const SharedLibrary& library) {
    void* const symbol = library.Function("CorvantisPlayer");
    if (symbol == nullptr) return nullptr;
    return reinterpret_cast<CorvantisPlayerFunction*>(symbol)();
}

bool HasEveryCall(const PlayerCalls& calls) {
    return calls.settings != nullptr && calls.open != nullptr && calls.change != nullptr &&
           calls.start != nullptr && calls.write != nullptr && calls.read != nullptr &&
           calls.stop != nullptr && calls.wait != nullptr && calls.close != nullptr;
}

bool IsWhole(const PlayerSettingInfo& info) {
    return info.name != nullptr && info.unit != nullptr && info.meaning != nullptr &&
           info.unless != nullptr;
}

// What is wrong with the calls, or "".
std::string Deficiency(const PlayerCalls* calls) {
    if (calls == nullptr) return "is no player: it exports no table of calls, CorvantisPlayer";
    if (calls->version != Player_Version)
        return "is a player of version " + std::to_string(calls->version) + ", not " +
               std::to_string(int{Player_Version});
    return HasEveryCall(*calls) ? "" : "is an incomplete player: a call in its table is null";
}

// What is wrong with the settings, or "".
std::string Deficiency(const PlayerSettingInfo* first, int32_t count) {
    if (count < 0 || (first == nullptr && count > 0)) return "is unfit: it has no list of settings";
    const bool whole = std::all_of(first, first + count, IsWhole);
    return whole ? "" : "is unfit: one of its settings lacks a text";
}

}  // namespace

std::optional<PlayerLibrary> PlayerLibrary::Load(const std::string& name, std::string& problem) {
    SharedLibrary library(WhereToLoad(name));
    const auto unfit = [&](const std::string& reason) {
        problem = "player '" + name + "' " + reason;
        return std::nullopt;
    };
    if (!library.IsLoaded()) return unfit("cannot be loaded: " + library.Problem());
    const PlayerCalls* const calls = CallsOf(library);
    if (const std::string lacking = Deficiency(calls); !lacking.empty()) return unfit(lacking);
    int32_t count = 0;
    const PlayerSettingInfo* const first = calls->settings(&count);
    if (const std::string lacking = Deficiency(first, count); !lacking.empty())
        return unfit(lacking);
    return PlayerLibrary(std::move(library), *calls, {first, static_cast<size_t>(count)});
}

}  // namespace corvantis::rig
