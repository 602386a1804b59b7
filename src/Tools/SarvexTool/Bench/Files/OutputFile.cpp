#include "Tools/SarvexTool/Bench/Files/OutputFile.h"

#include "Tools/SarvexTool/Bench/Files/FileNames.h"

#include <cerrno>
#include <random>
#include <system_error>
#include <utility>

namespace Bench {

namespace {

namespace fs = std::filesystem;

/// A name beside the target that no file has yet.
fs::path FreeNameBeside(const fs::path& target) {
    std::random_device random;
    fs::path path;
    std::error_code error;
    do {
        path = target;
        path += "." + std::to_string(random()) + ".part";
    } while (fs::exists(path, error));
    return path;
}

} // namespace

template <typename Result, typename Write>
Result OutputFile::Buffer::Noting(Result failed, Write write) {
    if (OSAL::HeldInterruption::IsWanted())
        return failed;
    errno = 0;
    const Result result = write();
    if (result == failed && m_error == 0)
        m_error = errno;
    return result;
}

OutputFile::Buffer::int_type OutputFile::Buffer::overflow(int_type character) {
    return Noting(traits_type::eof(), [&] { return std::filebuf::overflow(character); });
}

std::streamsize OutputFile::Buffer::xsputn(const char* text, std::streamsize size) {
    // Less than all of it is a failure.
    const auto write = [&] { return std::filebuf::xsputn(text, size) == size ? size : -1; };
    return Noting(std::streamsize{-1}, write);
}

int OutputFile::Buffer::sync() {
    return Noting(-1, [&] { return std::filebuf::sync(); });
}

OutputFile::OutputFile(std::string name, std::ostream& standardOutput)
    : m_name(std::move(name)), m_file(&m_buffer), m_pStream(&standardOutput) {
    if (m_name != StandardStreamName)
        Open();
}

void OutputFile::Open() {
    if (m_name.empty())
        Fail("cannot be written", ENOENT);
    m_target = PathOf(m_name);
    std::error_code ignored;
    const fs::file_status status = fs::status(m_target, ignored);
    if (fs::is_directory(status))
        Fail("cannot be written", EISDIR);
    const bool isOnDisk = !fs::exists(status) || fs::is_regular_file(status);
    // The links stay and lead to the new file. Those of a pipe in /dev/fd lead to no name.
    if (isOnDisk)
        m_target = EndOfLinks(m_target);
    if (fs::is_symlink(m_target, ignored) && isOnDisk)
        Fail("cannot be written", ELOOP);
    const fs::path opened = isOnDisk ? FreeNameBeside(m_target) : m_target;
    if (isOnDisk)
        m_held.emplace();
    errno = 0;
    if (m_buffer.open(opened, std::ios::out | std::ios::binary | std::ios::trunc) == nullptr)
        Fail("cannot be written", errno);
    if (isOnDisk)
        m_written = opened;
    if (isOnDisk && fs::exists(status))
        fs::permissions(m_written, status.permissions(), ignored);
    m_pStream = &m_file;
}

OutputFile::~OutputFile() {
    if (m_written.empty())
        return;
    // Windows removes no file that is open.
    m_buffer.close();
    std::error_code ignored;
    fs::remove(m_written, ignored);
}

void OutputFile::Finish() {
    errno = 0;
    m_pStream->flush();
    const bool isClosed = !m_buffer.is_open() || m_buffer.close() != nullptr;
    if (!*m_pStream || !isClosed)
        Fail("cannot be written to its end", m_buffer.Error() != 0 ? m_buffer.Error() : errno);
}

void OutputFile::Commit() {
    if (m_written.empty())
        return;
    std::error_code error;
    fs::rename(m_written, m_target, error);
    if (error)
        throw BadOutput(m_name, "cannot be replaced (" + error.message() + ")");
    m_written.clear();
}

void OutputFile::Fail(const std::string& what, int error) const {
    const std::string reason =
        error == 0 ? "" : " (" + std::generic_category().message(error) + ")";
    throw BadOutput(m_name, what + reason);
}

void WriteOutput(const std::string& name, std::ostream& standardOutput, const std::string& text) {
    OutputFile file(name, standardOutput);
    file.Stream() << text;
    file.Finish();
    file.Commit();
}

} // namespace Bench
