#pragma once

#include "Tools/SarvexTool/Bench/Core/ProblemList.h"

/// The kinds of problems that a Table finds, so that who reads it can ask for one.
namespace Bench::TableProblem {

inline constexpr ProblemKind encoding{Severity::Error, "places in another encoding"};
inline constexpr ProblemKind separator{Severity::Error, "lines with another separator"};
inline constexpr ProblemKind quotes{Severity::Error, "cells with quotes"};
inline constexpr ProblemKind decimalComma{Severity::Error, "cells with a decimal comma"};
inline constexpr ProblemKind comma{Severity::Error, "cells with a comma"};
inline constexpr ProblemKind carriageReturn{Severity::Error,
                                            "lines with a carriage return in the middle"};
inline constexpr ProblemKind controlByte{Severity::Error, "cells with control bytes"};
inline constexpr ProblemKind invalidUtf8{Severity::Error, "cells that are not in UTF-8"};
inline constexpr ProblemKind tab{Severity::Error, "cells with a tab"};
inline constexpr ProblemKind emptyCell{Severity::Error, "empty cells"};
inline constexpr ProblemKind blankCell{Severity::Error, "cells of blanks alone"};
inline constexpr ProblemKind shortLine{Severity::Error, "short lines"};
inline constexpr ProblemKind emptyCrLfLine{Severity::Error, "empty lines in a file with CR LF"};
inline constexpr ProblemKind columnName{Severity::Error, "columns with a wrong name"};
inline constexpr ProblemKind repeatedColumn{Severity::Error, "repeated columns"};
inline constexpr ProblemKind noLine{Severity::Error, "files without a line"};
inline constexpr ProblemKind crLf{Severity::Warning, "files with CR LF"};

/// How much these matter depends on the table.
inline constexpr ProblemKind longLineError{Severity::Error, "long lines"};
inline constexpr ProblemKind longLineWarning{Severity::Warning, "long lines"};
inline constexpr ProblemKind emptyLineError{Severity::Error, "empty lines"};
inline constexpr ProblemKind emptyLineWarning{Severity::Warning, "empty lines"};

} // namespace Bench::TableProblem
