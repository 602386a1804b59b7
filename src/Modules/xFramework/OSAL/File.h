#pragma once

#include "Modules/xFramework/OSAL/Handle.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace OSAL {

/// What ReadFileAttributes gives for a path that cannot be looked at.
inline constexpr std::uint32_t InvalidFileAttributes = 0xFFFFFFFF;
inline constexpr std::uint32_t ArchiveAttribute = 0x20;
inline constexpr std::uint32_t ReparsePointAttribute = 0x400;
/// The reparse tag of a symbolic link.
inline constexpr std::uint32_t SymbolicLinkTag = 0xA000000C;

/// The attribute bits of the path itself, not of what a link leads to. Where the system has no such
/// bits, everything but a directory bears the archive bit and a symbolic link the reparse bit too.
std::uint32_t ReadFileAttributes(const std::string& path);

/// The reparse tag of the path itself; 0 when it has none or cannot be looked at.
std::uint32_t ReadReparseTag(const std::string& path);

/// The number of hard links of the file that the path leads to; 0 when it cannot be opened.
std::uint32_t CountHardLinks(const std::string& path);

/// Opens an existing file for shared reading; InvalidHandle when it cannot. Never waits for a
/// writer at the other end.
Handle OpenFileForReading(const std::string& path);

/// Reads up to size bytes; returns how many came, 0 at the end and on failure.
std::size_t ReadFile(Handle file, char* buffer, std::size_t size);

/// The whole text of a file as the platform's text mode reads it; empty when it cannot be opened.
/// Where that mode has them, CR LF is one line end and Ctrl-Z ends the text. A file that is open
/// for writing elsewhere can be read. Never waits: what is no file on disk, such as a directory or
/// a pipe, gives an empty text.
std::string ReadTextFile(const std::string& path);

} // namespace OSAL
