#include "Tools/SarvexTool/Bench/Files/Locks.h"

#include "Tools/SarvexTool/Bench/Files/FileNames.h"

#include <array>
#include <fstream>
#include <stdexcept>
#include <system_error>

namespace Bench {

namespace {

/// In one line; the folder's name may hold anything.
std::string InWords(const LockHolder& holder) {
    const std::string words =
        "process " + std::to_string(holder.processId) + ", since " + holder.since;
    return holder.directory.empty() ? words : words + ", with the run in " + holder.directory;
}

/// What the holder has written; a holder that has just come may not have written yet.
std::string HolderOf(const std::string& file) {
    std::ifstream stream(PathOf(file), std::ios::binary);
    // The text is somebody's: no more of it than a path can have.
    std::array<char, 8192> text{};
    stream.read(text.data(), text.size());
    const std::string holder(text.data(), static_cast<std::size_t>(stream.gcount()));
    return holder.empty() ? "another process" : holder;
}

bool IsPlain(char character) {
    return (character >= '0' && character <= '9') || (character >= 'a' && character <= 'z') ||
           character == '.' || character == '-';
}

/// A text as a part of a file's name, different for each text.
std::string AsFileName(const std::string& text) {
    constexpr const char* digits = "0123456789abcdef";
    std::string name;
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        if (IsPlain(character))
            name += character;
        else
            name += {'%', digits[byte >> 4], digits[byte & 0xF]};
    }
    return name;
}

} // namespace

OSAL::FileLock TakeLock(const std::string& file, const std::string& name, const std::string& what,
                        const LockHolder& holder) {
    std::optional<OSAL::FileLock> lock = OSAL::FileLock::TryLock(file, InWords(holder));
    if (!lock)
        throw InUse(name, what + " is in use by " + HolderOf(file));
    return std::move(*lock);
}

OSAL::FileLock LockDaemon(const std::string& host, std::uint16_t port, const LockHolder& holder) {
    return TakeLock(DaemonLockFile(host, port), host + " port " + std::to_string(port),
                    "the daemon", holder);
}

std::string LockFolder(const std::string& name) {
    try {
        return OSAL::MakeUserFolder(name);
    } catch (const std::system_error& error) {
        if (error.code() != std::errc::permission_denied)
            throw;
        throw std::runtime_error(std::string(error.what()) +
                                 "; it belongs to another user or is open to others: have it "
                                 "removed, or the run's locks would be theirs");
    }
}

std::string DaemonLockFile(const std::string& host, std::uint16_t port) {
    return LockFolder("SarvexToolBench") + "/daemon-" + AsFileName(host) + "-" +
           std::to_string(port) + ".lock";
}

} // namespace Bench
