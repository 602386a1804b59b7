#pragma once

#include "Tools/SarvexTool/Bench/Core/ProblemList.h"

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
