#pragma once

#include "Modules/xFramework/OSAL/Handle.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace OSAL {

/// What a path itself is, not what a link leads to. A path that cannot be looked at is none of it.
struct PathKind {
    bool isDirectory = false;
    bool isSymbolicLink = false;
    /// Whether the system marks it as something to be archived. Windows does so for new files until
    /// a backup program takes the mark away; elsewhere everything but a directory counts.
    bool isToBeArchived = false;
};

PathKind LookAtPath(const std::string& path);

/// How many names (hard links) the file that the path leads to has; 0 when it cannot be opened.
std::uint32_t CountNames(const std::string& path);

/// Opens an existing file for shared reading; the handle is not open when it cannot. Never waits
/// for a writer at the other end.
OwnedHandle OpenFileForReading(const std::string& path);

/// Reads up to size bytes; returns how many came, 0 at the end and on failure, also when the file
/// is not open.
std::size_t ReadFile(const OwnedHandle& file, char* buffer, std::size_t size);

/// The whole text of a file as the platform's text mode reads it; empty when it cannot be opened.
/// A read that fails ends the text. Where that mode has them, CR LF is one line end and Ctrl-Z ends
/// the text. A file that is open for writing elsewhere can be read. Never waits: what is no file on
/// disk, such as a directory or a pipe, gives an empty text.
std::string ReadTextFile(const std::string& path);

} // namespace OSAL
