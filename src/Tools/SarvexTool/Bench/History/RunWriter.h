#pragma once

#include "Tools/SarvexTool/Bench/Core/Settings.h"
#include "Tools/SarvexTool/Bench/Files/KeptFiles.h"
#include "Tools/SarvexTool/Bench/History/Database.h"

#include <cstdint>
#include <string>

namespace Bench {

/// What a configuration is found by: for each setting its size and its text, or "-" where it is not
/// known, as "1:5,2:AB,-,..."; where that is long, its SHA-256. Settings with the same texts have
/// the same key.
std::string KeyOf(const Settings& settings);

/// Writes all rows of a run that is not kept yet, in a transaction of the caller's. The number is
/// one that no run has.
void InsertRun(Database& database, std::int64_t number, const RunToKeep& run, std::int64_t now);

} // namespace Bench
