// The conductances of a dynamic clamp, point by point.
#pragma once

#include "plan/PlannedEpoch.h"

namespace corvantis::rig {

// Of the epoch's stimuli, if one of them is a dynamic clamp. Throws a Failure.
void PlanConductances(const Node& stimuli, const Names& names, PlannedEpoch& epoch);

}  // namespace corvantis::rig
