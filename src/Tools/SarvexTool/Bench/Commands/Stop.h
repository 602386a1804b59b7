#pragma once

#include "Tools/SarvexTool/Bench/Commands/Command.h"
#include "Tools/SarvexTool/Bench/Daemon/DaemonAddress.h"
#include "Tools/SarvexTool/Bench/Run/EndRequests.h"

#include <optional>
#include <string>

namespace Bench {

/// Holds the requests to end the program while a transmitter may be on. A second one ends it with
/// StopNotConfirmed and says so, after why there is only a stop. Where the system has no pipe or
/// thread for it, no request is heard. The surroundings live longer than the requests.
void HoldUntilStopped(EndRequests& requests, const DaemonAddress& address,
                      Surroundings& surroundings, const std::string& why = "");

/// Sends the stop to the daemon of a run that cannot be resumed, once, and then prints why it
/// cannot, and what has come of the stop. The requests are held. Returns Failed or
/// StopNotConfirmed.
int StopUnresumed(const DaemonAddress& address, double seconds, const std::string& why,
                  EndRequests& requests, Surroundings& surroundings);

/// Sends the stop to a daemon, once and without a word, before something that takes long. The
/// requests are held; when one has come by then, prints what has become of the stop and returns the
/// exit code of a program that ends for it. Without one, those that come later are held on only
/// where the stop was not confirmed.
std::optional<int> StopAhead(const DaemonAddress& address, double seconds, EndRequests& requests,
                             Surroundings& surroundings);

/// Stops a device's transmission by hand.
Command AddStop(Options program);

} // namespace Bench
