#include "Tools/SarvexTool/Bench/Files/AppendedLines.h"

#include "Tools/SarvexTool/Bench/Files/BadFile.h"

#include <stdexcept>
#include <utility>

namespace Bench {

AppendedLines::AppendedLines(std::istream& stream, std::string name)
    : m_stream(stream), m_name(std::move(name)) {}

bool AppendedLines::Read(const Parse& parse) {
    if (!ReadLine())
        return false;
    try {
        parse(m_text);
    } catch (const std::invalid_argument& wrong) {
        if (m_stream.peek() == std::istream::traits_type::eof() && !m_stream.bad())
            return false;
        throw BadInput(m_name, {Problem{Severity::Error, m_line, 0, wrong.what()}});
    }
    m_end += m_text.size() + 1;
    return true;
}

bool AppendedLines::ReadLine() {
    std::getline(m_stream, m_text);
    ++m_line;
    if (m_stream.bad())
        throw BadInput(m_name, "cannot be read to its end");
    // Only a line with an end leaves the stream before the file's end.
    return m_stream.good();
}

} // namespace Bench
