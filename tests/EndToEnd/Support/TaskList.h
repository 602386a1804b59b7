#pragma once

#include "tests/EndToEnd/Support/Bench.h"

#include <string>

namespace EndToEnd {

/// Makes the client on the bench see a task list without a daemon; false when the system's list
/// shows one that the test cannot hide.
bool PrepareTaskList(const Bench& bench);

/// The daemon runs now: where the task list is the test's own, shows it there.
void ShowInTaskList(const Bench& bench, const std::string& name);

/// Ends the daemon that the client started from the bench, if it runs.
void EndDaemon(const Bench& bench, const std::string& name);

} // namespace EndToEnd
