#pragma once

#include "Tools/SarvexTool/Bench/Files/RunDirectory.h"
#include "Tools/SarvexTool/Bench/Run/EndRequests.h"
#include "Tools/SarvexTool/Bench/Run/RunWatcher.h"
#include "Tools/SarvexTool/Bench/Supervision/Supervisor.h"

namespace Bench {

/// Runs the test of a run's folder, from the line after the last one that it has, until it is
/// complete or ends early: with clients that the supervisor starts one after the other, whose
/// exchanges go through a relay to the daemon. Requests to end the program end the run safely, and
/// none ends the program itself from here on. The watcher may not wait for anybody.
/// To be called on the main thread. The folder's facts say what to run, and get what becomes of it:
/// all but the exit code and what the caller knows better.
///
/// Errors while the run lasts end it, and are its reason. Throws BadFile, std::system_error and
/// std::runtime_error when it cannot begin at all.
RunEnd RunSupervised(RunDirectory& directory, IRunWatcher& watcher, EndRequests& requests);

} // namespace Bench
