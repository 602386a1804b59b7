#include "Tools/SarvexTool/Bench/Files/MergedRun.h"

#include "Tools/SarvexTool/Bench/Files/BadFile.h"
#include "Tools/SarvexTool/Bench/Files/FileNames.h"
#include "Tools/SarvexTool/Bench/Files/Input.h"
#include "Tools/SarvexTool/Bench/Files/ResultTreeWriter.h"
#include "Tools/Vemo/VemoClient/DynamicTest/Columns.h"
#include "Tools/Vemo/VemoClient/DynamicTest/TestFile.h"

#include <cerrno>
#include <filesystem>
#include <stdexcept>
#include <system_error>

namespace Bench {

namespace {

[[noreturn]] void Fail(const std::string& name) {
    const std::string reason =
        errno == 0 ? "" : " (" + std::generic_category().message(errno) + ")";
    throw BadOutput(name, "cannot be written" + reason);
}

void Copy(const std::string& source, const std::string& target) {
    errno = 0;
    std::ofstream copy(PathOf(target), std::ios::binary);
    ReadPieces(source, [&copy](std::string_view piece) {
        copy.write(piece.data(), static_cast<std::streamsize>(piece.size()));
    });
    copy.close();
    if (!copy)
        Fail(target);
}

/// Written to a file, which is made anew.
std::uint64_t SizeOfLineEnd(const std::string& name) {
    errno = 0;
    {
        std::ofstream file(PathOf(name));
        file << '\n';
    }
    std::error_code error;
    const std::uint64_t size = std::filesystem::file_size(PathOf(name), error);
    if (error || size == 0)
        Fail(name);
    return size;
}

} // namespace

MergedRun::MergedRun(const std::string& directory, const std::string& plan,
                     const LockHolder& holder)
    : m_folder(directory, holder),
      m_lineEnd(SizeOfLineEnd(Files().result)),
      m_rows(PathOf(Files().result)),
      m_journal(PathOf(Files().journal), std::ios::binary) {
    Copy(plan, Files().testFile);
}

void MergedRun::AddHeader(const std::string& header) {
    m_header = header;
    if (PowerTest::FindUnknownColumn(PowerTest::SplitFields(header)) != nullptr)
        return;
    const std::string row = header + PowerTest::powerTitles;
    m_rows << row << '\n';
    m_csvEnd += row.size() + m_lineEnd;
    RequireWritten();
}

void MergedRun::Add(const std::string& row, JournalEntry entry) {
    if (PendingFolder::IsInterrupted())
        throw std::runtime_error("interrupted");
    errno = 0;
    m_rows << row << '\n';
    m_csvEnd += row.size() + m_lineEnd;
    entry.csvEnd = m_csvEnd;
    m_journal << LineOf(entry);
    RequireWritten();
}

void MergedRun::Finish(const std::string& countryCode) {
    errno = 0;
    m_rows.close();
    m_journal.close();
    RequireWritten();
    WriteResultTree({Files().result, m_header, countryCode}, Files().tree);
}

void MergedRun::Commit(const RunFacts& facts) {
    WriteRunFacts(Files().facts, facts);
    m_folder.Commit();
}

void MergedRun::RequireWritten() const {
    if (!m_rows)
        Fail(Files().result);
    if (!m_journal)
        Fail(Files().journal);
}

} // namespace Bench
