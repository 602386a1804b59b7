#pragma once

#include "Tools/SarvexTool/Bench/Core/Kept.h"
#include "Tools/SarvexTool/Bench/History/Database.h"

#include <cstdint>
#include <string>
#include <vector>

namespace Bench {

/// Whether each file of a kept run is what it was, and the run's rows are those of its files. Adds
/// what is wrong to the problems, in sentences without an end mark. In a transaction of the
/// caller's; throws StoreError for what fails in the database.
void CheckRun(Database& database, std::int64_t number, const KeptFacts& facts,
              std::vector<std::string>& problems);

/// The same of the configurations of all runs: whether the settings of each are those that it is
/// found by.
void CheckConfigurations(Database& database, std::vector<std::string>& problems);

} // namespace Bench
