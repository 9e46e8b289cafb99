// The calls that are to fail, of all devices.
#include "simulator/Faults.h"

#include <array>
#include <cstddef>

#include "simulator/ITC18Simulator.h"

namespace itc18 {
namespace {

struct Fault {
    int32_t result;  // 0: none
    int32_t ahead;   // calls until the one that fails, itself counted; 0: each fails
};

std::array<Fault, ITC18Simulator_Calls> faults;

}  // namespace

int32_t TakeFault(int32_t call) {
    if (call >= ITC18Simulator_Calls) return 0;
    Fault& fault = faults[static_cast<size_t>(call)];
    if (fault.ahead == 0) return fault.result;
    if (--fault.ahead > 0) return 0;
    const int32_t result = fault.result;
    fault = {};
    return result;
}

void SetFault(int32_t call, int32_t nth, int32_t result) {
    faults[static_cast<size_t>(call)] = {result, result != 0 ? nth : 0};
}

void ClearFaults() { faults.fill({}); }

}  // namespace itc18
