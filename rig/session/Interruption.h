// Ctrl-C: counted, for a recording to end where nothing is lost.
#pragma once

namespace corvantis::rig {

void CountInterruptions();
int Interruptions();

}  // namespace corvantis::rig
