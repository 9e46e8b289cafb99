// A player while it is open, its answers checked: a library of somebody else's is not trusted to
// have moved no more than it was asked to.
#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "Player.h"
#include "player/PlayerLibrary.h"

namespace corvantis::rig {

// What a call came to.
struct Answer {
    int32_t result = Player_Success;  // one of PlayerResult; an unknown one counts as refused
    int32_t setting = -1;             // the number of the setting in question, or -1
    std::string text;                 // a sentence, unless it succeeded

    explicit operator bool() const { return result == Player_Success; }
};

// Calls return Player_Refused before Open and after one that failed, and for an answer that cannot
// be; each is as in Player.h. What is written through a reference is written on success alone.
class OpenPlayer {
  public:
    // The library must outlive it.
    explicit OpenPlayer(const PlayerLibrary& library) : calls(library.Calls()) {}
    ~OpenPlayer();
    OpenPlayer(const OpenPlayer&) = delete;
    OpenPlayer& operator=(const OpenPlayer&) = delete;

    // Closes first what was open.
    //   device  as ITCInit has opened it; must stay open
    Answer Open(void* device, std::span<const PlayerSetting> settings);
    Answer Change(std::span<const PlayerSetting> settings);
    Answer Start(const PlayerEpoch& epoch, int32_t& delay);
    Answer Write(std::span<const uint16_t> samples, int32_t& written);
    Answer Read(std::span<uint16_t> samples, int32_t& taken);
    Answer Stop();
    Answer Wait(int64_t microseconds, const uint16_t* levels);
    void Close();

  private:
    template <class Call>
    Answer Ask(const char* what, Call call);

    const PlayerCalls& calls;
    void* player = nullptr;
};

}  // namespace corvantis::rig
