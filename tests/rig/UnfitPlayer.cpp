// Players that a program must not be taken in by, one for each value of UNFIT.
#include <cstring>

#include "Player.h"

namespace {

enum { kOfAnotherVersion = 1, kWithoutACall = 2, kWithoutAText = 3, kLying = 4 };

const PlayerSettingInfo kNameless = {nullptr, "", "", nullptr, 0, 1, "0"};

const PlayerSettingInfo* Settings(int32_t* count) {
    *count = UNFIT == kWithoutAText ? 1 : 0;
    return &kNameless;
}
int32_t Open(void* device, const PlayerSetting*, int32_t, void** player, PlayerProblem*) {
    *player = device;
    return Player_Success;
}
int32_t Change(void*, const PlayerSetting*, int32_t, PlayerProblem* problem) {
    std::memset(problem->text, 'x', sizeof problem->text);
    return 1234;
}
int32_t Start(void*, const PlayerEpoch*, int32_t* delay, PlayerProblem*) {
    *delay = -1;
    return Player_Success;
}
int32_t Write(void*, const uint16_t*, int32_t count, int32_t* written, PlayerProblem*) {
    *written = count + 1;
    return Player_Success;
}
int32_t Read(void*, uint16_t*, int32_t, int32_t* taken, PlayerProblem*) {
    *taken = -1;
    return Player_Success;
}
int32_t Stop(void*, PlayerProblem*) { return Player_Refused; }
int32_t Wait(void*, int64_t, const uint16_t*, PlayerProblem*) { return Player_Success; }
void Close(void*) {}

const PlayerCalls kCalls = {UNFIT == kOfAnotherVersion ? Player_Version + 1 : Player_Version,
                            1,
                            Settings,
                            Open,
                            Change,
                            Start,
                            Write,
                            Read,
                            UNFIT == kWithoutACall ? nullptr : Stop,
                            Wait,
                            Close};

}  // namespace

const PlayerCalls* CorvantisPlayer(void) { return &kCalls; }
