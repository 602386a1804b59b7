#pragma once

#include "Modules/xFramework/OSAL/Process.h"

#include <string>

/// Makes sure that the daemon runs on this machine: when the task list does not show it, starts its
/// executable from the program's directory and pauses 2000 ms, whether the start succeeded or not,
/// so that the daemon can open its port. name is the executable's base name without extension.
/// Returns false, after a message on standard error, when the start failed.
bool StartLocalDaemon(const std::string& name);

/// Whether the system's task list shows the name among its first 1024 bytes, in exactly this case.
/// With requireTwo, or for the name "VEMO", it must be there twice. False too when the list
/// cannot be had.
bool IsProcessRunning(const std::string& name, bool requireTwo);

/// Starts an executable of the directory (which ends in a separator) with an argument text, in the
/// directory itself and with this process's environment and handles. On success the process
/// information owns the handles of the process.
bool StartProcess(const std::string& directory, const std::string& name,
                  const std::string& arguments, bool newConsole,
                  OSAL::ProcessInformation& information);
