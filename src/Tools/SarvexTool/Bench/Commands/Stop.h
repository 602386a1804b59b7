#pragma once

#include "Tools/SarvexTool/Bench/Commands/Command.h"
#include "Tools/SarvexTool/Bench/Daemon/DaemonAddress.h"

namespace Bench {

/// Sends the stop to a daemon, once, and prints what comes of it. Returns Fine or StopNotConfirmed.
int StopByHand(const DaemonAddress& address, double seconds, Surroundings& surroundings);

/// Sends the stop to a daemon, once and without a word, before something that takes long. A request
/// to end the program waits for it, and then prints what has come of it.
void StopAhead(const DaemonAddress& address, double seconds, Surroundings& surroundings);

/// Stops a device's transmission by hand.
Command AddStop(Options program);

} // namespace Bench
