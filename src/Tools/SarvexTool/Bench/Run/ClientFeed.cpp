#include "Tools/SarvexTool/Bench/Run/ClientFeed.h"

#include "Tools/SarvexTool/Bench/Files/BadFile.h"
#include "Tools/SarvexTool/Bench/Files/FileNames.h"

#include <filesystem>
#include <system_error>
#include <utility>

namespace Bench {

ClientFeed::ClientFeed(const std::string& testFile, LineNumber lastLine) : m_source(testFile) {
    TestLine skipped;
    while (skipped.number < lastLine && m_source.Read(skipped)) {
    }
}

void ClientFeed::WriteNext(const ClientFolder& folder, std::size_t lines) {
    m_lines.clear();
    std::vector<std::string> texts;
    TestLine line;
    while (texts.size() < lines && m_source.Read(line)) {
        texts.push_back(line.text);
        m_lines.push_back(std::move(line));
    }
    WriteSegment(folder.Lines(), m_source.Header(), texts);
    // The rows of the client before must not count as those of the next one.
    std::error_code error;
    std::filesystem::remove(PathOf(folder.Result()), error);
    if (error)
        throw BadOutput(folder.Result(), "cannot be removed (" + error.message() + ")");
    m_rows.emplace(folder.Result(), m_source.IsHeaderKnown());
}

} // namespace Bench
