#pragma once

#include "Tools/SarvexTool/Bench/Daemon/Daemon.h"
#include "Tools/SarvexTool/Bench/Files/TestFileCheck.h"

namespace Bench {

/// Sends each distinct effective configuration of a test file to a daemon, without calibrating or
/// starting anything. After a refusal sends the settings one by one, to find the cell. Adds what is
/// refused to the file's problems. The device's settings have changed afterwards. Throws what
/// asking throws.
void TrySettings(CheckedTestFile& file, IDaemon& daemon);

} // namespace Bench
