// What the interface says of an epoch's place and channels.
#pragma once

#include "CorvantisReading.h"
#include "epochs/EpochLayout.h"

namespace corvantis::reading {

CorvantisEpochInfo InfoOf(const EpochReading& reading);

}  // namespace corvantis::reading
