#include "Tools/SarvexTool/Bench/Files/RowReader.h"

#include "Tools/SarvexTool/Bench/Files/FileNames.h"

#include <fstream>
#include <utility>

namespace Bench {

RowReader::RowReader(std::string name, bool hasHeader)
    : m_name(std::move(name)), m_hasHeader(hasHeader) {}

std::optional<std::string> RowReader::TakeRow() {
    return m_hasHeader && Header().empty() ? std::nullopt : TakeLine();
}

const std::string& RowReader::Header() {
    if (m_hasHeader && m_header.empty())
        m_header = TakeLine().value_or("");
    return m_header;
}

std::optional<std::string> RowReader::TakeLine() {
    // Opened each time: an open file could not be replaced on every system.
    std::ifstream file(PathOf(m_name), std::ios::binary);
    file.seekg(static_cast<std::streamoff>(m_place));
    std::string line;
    std::getline(file, line);
    // The client writes a row and its end at once, but a reader may come in between.
    if (!file.good())
        return std::nullopt;
    line += '\n';
    m_place += line.size();
    return line;
}

} // namespace Bench
