#pragma once

#include "Tools/SarvexTool/Bench/Core/Configurations.h"

namespace Bench {

/// Lines of a file that follow each other, both ends included.
struct LineRange {
    LineNumber first = 0;
    LineNumber last = 0;

    LineNumber Count() const { return last - first + 1; }
    bool Holds(LineNumber line) const { return first <= line && line <= last; }

    bool operator==(const LineRange&) const = default;
};

} // namespace Bench
