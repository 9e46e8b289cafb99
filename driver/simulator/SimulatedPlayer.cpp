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
    Player_Version,
    ITC18Simulator_Settings,
    Open,
    ITC18Simulator_Change,
    ITC18Simulator_Start,
    ITC18Simulator_Write,
    ITC18Simulator_Read,
    ITC18Simulator_Stop,
    ITC18Simulator_Wait,
    ITC18Simulator_Disconnect,
};

}  // namespace

const PlayerCalls* CorvantisPlayer(void) { return &kCalls; }
