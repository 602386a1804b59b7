#include "Tools/SarvexTool/Bench/Files/ClientFolder.h"

#include "Modules/xFramework/OSAL/DurableFile.h"
#include "Modules/xFramework/OSAL/File.h"
#include "Modules/xFramework/OSAL/Process.h"
#include "Tools/SarvexTool/Bench/Files/BadFile.h"
#include "Tools/SarvexTool/Bench/Files/FileNames.h"
#include "Tools/SarvexTool/Bench/Files/Input.h"

#include <cstdint>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <utility>

namespace Bench {

namespace {

namespace fs = std::filesystem;

/// Where the client itself would look for its files: beside what a link leads to.
fs::path RealPath(const std::string& client) {
    std::error_code error;
    fs::path path = fs::canonical(PathOf(client), error);
    if (!error && !fs::is_regular_file(path, error) && !error)
        error = std::make_error_code(std::errc::is_a_directory);
    if (error)
        throw BadInput(client, "cannot be used as the client (" + error.message() + ")");
    return path;
}

/// Copies a file, so that it can be written and therefore removed on every system. The standard
/// library's own copy tells of a full disk only that it failed.
void CopyFile(const fs::path& source, const fs::path& target) {
    OSAL::DurableFile copy(NameOf(target), OSAL::DurableFile::Opening::New);
    ReadPieces(NameOf(source), [&copy](std::string_view piece) { copy.Append(piece); });
    fs::permissions(target, fs::status(source).permissions() | fs::perms::owner_write);
}

/// A copy, not a link: the client does not read files that have two names.
void CopyCommandTable(const fs::path& source, const fs::path& folder) {
    std::error_code error;
    if (!fs::exists(fs::symlink_status(source, error)))
        return;
    // The client's own rule.
    const OSAL::PathKind kind = OSAL::LookAtPath(NameOf(source));
    if (kind.isToBeArchived && (kind.isSymbolicLink || OSAL::CountNames(NameOf(source)) > 1))
        throw BadInput(NameOf(source), "is a link, which the client does not read");
    CopyFile(source, folder / source.filename());
}

/// The client of a run that was killed ends with it, but not on every system at once; until then
/// its file cannot be removed.
void RemoveOld(const fs::path& folder) {
    constexpr std::uint32_t pauseMilliseconds = 50;
    constexpr std::uint32_t patienceMilliseconds = 3000;
    std::error_code error;
    for (std::uint32_t waited = 0; waited < patienceMilliseconds; waited += pauseMilliseconds) {
        fs::remove_all(folder, error);
        if (error != std::errc::permission_denied)
            break;
        OSAL::Sleep(pauseMilliseconds);
    }
    if (error)
        throw BadOutput(NameOf(folder), "cannot be removed (" + error.message() + ")");
}

} // namespace

ClientFolder::ClientFolder(std::string folder, const std::string& client, std::uint16_t port)
    : m_folder(std::move(folder)) {
    const fs::path path = PathOf(m_folder);
    RemoveOld(path);
    fs::create_directory(path);
    try {
        Fill(client, port);
    } catch (...) {
        std::error_code ignored;
        fs::remove_all(path, ignored);
        throw;
    }
}

ClientFolder::~ClientFolder() {
    std::error_code ignored;
    fs::remove_all(PathOf(m_folder), ignored);
}

void ClientFolder::Fill(const std::string& client, std::uint16_t port) {
    const fs::path folder = PathOf(m_folder);
    const fs::path source = RealPath(client);
    CopyFile(source, folder / source.filename());
    m_program = m_folder + "/" + NameOf(source.filename());
    CopyCommandTable(source.parent_path() / "SarvexToolCmds.txt", folder);
    OSAL::DurableFile(m_folder + "/Socket.cfg", OSAL::DurableFile::Opening::New)
        .Append(std::to_string(port));
}

} // namespace Bench
