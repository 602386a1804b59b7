#pragma once

#include "Tools/SarvexTool/Bench/Core/Plan.h"
#include "Tools/SarvexTool/Bench/Core/ProblemList.h"
#include "Tools/SarvexTool/Bench/Files/PlanLines.h"

#include <cstdint>
#include <string_view>

/// The kinds of problems that a test file may have beside those of its table.
namespace Bench::TestFileProblem {

inline constexpr ProblemKind chains{Severity::Error, "cells with unknown chains"};
inline constexpr ProblemKind option{Severity::Error, "cells that begin with \"-\""};
inline constexpr ProblemKind variable{Severity::Error, "cells with \"$(\""};
inline constexpr ProblemKind markup{Severity::Error, "cells that make result.xml invalid"};
inline constexpr ProblemKind refused{Severity::Error, "configurations that the daemon refuses"};
inline constexpr ProblemKind literal{Severity::Warning, "typed literals"};
inline constexpr ProblemKind unset{Severity::Warning, "settings that no line has set"};
inline constexpr ProblemKind repeat{Severity::Warning, "repeated lines"};
inline constexpr ProblemKind noSetting{Severity::Warning, "lines without any setting"};
inline constexpr ProblemKind tooManyLines{Severity::Warning, "lines too many"};

} // namespace Bench::TestFileProblem

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

/// Whether the client takes a text for a typed literal, such as {int:0x1F}, and sends its value in
/// place of the text.
bool IsTypedLiteral(std::string_view text);

} // namespace Bench
