#pragma once

#include "Tools/SarvexTool/Bench/Core/Plan.h"
#include "Tools/SarvexTool/Bench/Files/Table.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

namespace Bench {

/// What the table of a test file may hold.
const TableRules& TestFileRules();

/// A test file that was read, whatever is wrong with it.
struct CheckedTestFile {
    ProblemList problems;
    Plan plan;
    /// The number of each setting's cell in a line, from 1; 0 for a setting without a column.
    std::array<std::uint32_t, SettingCount> columns{};
};

/// Reads a test file and tells all that is wrong with it. The plan's texts are kept in the pool.
/// mostLines is what this system can carry in one run of the client.
CheckedTestFile CheckTestFile(std::string_view bytes, TextPool& pool, std::uint64_t mostLines);

} // namespace Bench
