#pragma once

#include <string>

namespace Utilities {

/// Whether the path is a symbolic link or a file with more than one hard link. Only a path that
/// bears the archive attribute is ever taken for a link: that asymmetry is kept on purpose.
bool IsLink(const std::string& path);

/// The message for a file beside the program that is refused because it is a link.
std::string LinkMessage(const std::string& path);

} // namespace Utilities
