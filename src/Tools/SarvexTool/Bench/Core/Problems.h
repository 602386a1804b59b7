#pragma once

#include "Tools/SarvexTool/Bench/Core/Configurations.h"

#include <cstdint>
#include <string>

namespace Bench {

/// How much a problem matters: with an error, a run would not do what the file says.
enum class Severity : std::uint8_t { Error, Warning };

/// Something that is wrong with a file.
struct Problem {
    Severity severity = Severity::Error;
    LineNumber line = 0;
    /// The number of the cell, the first one 1; 0 stands for the whole line.
    std::uint32_t column = 0;
    /// What is wrong and what to do, in UTF-8. Parts of the file in it may hold any byte: what
    /// shows the text makes them harmless.
    std::string text;
};

} // namespace Bench
