// The calls that are to fail.
#pragma once

#include <cstdint>

namespace itc18 {

// The result that a call of this kind has to return in place of its own, or 0: it works. Counts it.
int32_t TakeFault(int32_t call);

// Has a kind of call fail: from now on, or, if `nth` is not 0, that one of them alone.
void SetFault(int32_t call, int32_t nth, int32_t result);

void ClearFaults();

}  // namespace itc18
