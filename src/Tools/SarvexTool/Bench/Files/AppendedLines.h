#pragma once

#include "Tools/SarvexTool/Bench/Core/Configurations.h"

#include <cstdint>
#include <functional>
#include <istream>
#include <string>

namespace Bench {

/// Reads a file that is only ever appended to, a whole line at a time. A crash may have torn the
/// last line: it has no end, or holds anything. Memory does not grow with the file.
class AppendedLines {
public:
    /// Takes a line without its end. Throws std::invalid_argument for one that nobody has written
    /// so, with what is wrong with it.
    using Parse = std::function<void(const std::string& line)>;

    /// The stream is read in binary and outlives the reader; the name is for the problems only.
    AppendedLines(std::istream& stream, std::string name);

    /// Reads a line; false at the end, and at a last line that is torn. Throws BadInput for any
    /// other line that cannot be parsed, with its number, and when the file cannot be read.
    bool Read(const Parse& parse);

    /// How many bytes the lines have that were read; what follows at the end is to be cut off.
    std::uint64_t End() const { return m_end; }

private:
    /// Reads the next line into m_text; false when there is no whole one.
    bool ReadLine();

    std::istream& m_stream;
    std::string m_name;
    std::string m_text;
    LineNumber m_line = 0;
    std::uint64_t m_end = 0;
};

} // namespace Bench
