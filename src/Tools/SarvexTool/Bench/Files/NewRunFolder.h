#pragma once

#include "Tools/SarvexTool/Bench/Files/RunDirectory.h"

#include <chrono>
#include <functional>
#include <string>

namespace Bench {

/// A folder that does not exist yet, for a run of a test file that begins now:
/// "runs/short-20260309- 080500", in UTC.
std::string NewRunName(const std::string& testFile, std::chrono::system_clock::time_point now);

/// The folder of a new run that create makes, which throws as RunDirectory::Create, under a name
/// that does not exist yet. Where somebody else takes the name at that moment, the next one is
/// tried.
RunDirectory CreateUnderNewName(const std::function<std::string()>& newName,
                                const std::function<RunDirectory(const std::string&)>& create);

} // namespace Bench
