// The simulated interface as a player: what is played on it is its device.
#include "Player.h"
#include "simulator/ITC18Simulator.h"

namespace {

int32_t Open(void* device, const PlayerSetting* settings, int32_t count, void** player,
             PlayerProblem* problem) {
    const int32_t result = ITC18Simulator_Connect(device, settings, count, problem);
    if (result == Player_Success) *player = device;
    return result;
}

constexpr PlayerCalls kCalls = {
    .version = Player_Version,
    .simulated = 1,
    .settings = ITC18Simulator_Settings,
    .open = Open,
    .change = ITC18Simulator_Change,
    .start = ITC18Simulator_Start,
    .write = ITC18Simulator_Write,
    .read = ITC18Simulator_Read,
    .stop = ITC18Simulator_Stop,
    .wait = ITC18Simulator_Wait,
    .close = ITC18Simulator_Disconnect,
};

}  // namespace

const PlayerCalls* CorvantisPlayer(void) { return &kCalls; }
