#pragma once

#include <string>

namespace Utilities {

/// What the log calls a source file: its path from src/ (included), without extension. The compiler
/// names files as the build does; a path outside such a tree only loses its extension.
std::string SourceName(const std::string& path);

} // namespace Utilities
