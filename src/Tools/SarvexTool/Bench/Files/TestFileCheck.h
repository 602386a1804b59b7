#pragma once

#include "Tools/SarvexTool/Bench/Core/Plan.h"
#include "Tools/SarvexTool/Bench/Files/PlanLines.h"

#include <cstdint>
#include <string_view>

namespace Bench {

/// A test file that was read, whatever is wrong with it.
struct CheckedTestFile {
    ProblemList problems;
    Plan plan;
    SettingColumns columns{};
};

/// Reads a test file and tells all that is wrong with it. The plan's texts are kept in the pool.
/// mostLines is what this system can carry in one run of the client.
CheckedTestFile CheckTestFile(std::string_view bytes, TextPool& pool, std::uint64_t mostLines);

} // namespace Bench
