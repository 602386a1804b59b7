#pragma once

#include <string>

namespace Utilities {

/// All bytes of a file; empty when it cannot be opened or read. Never waits: what is no file on
/// disk (a directory, a pipe without a writer) gives an empty text.
std::string ReadFileText(const std::string& path);

} // namespace Utilities
