#pragma once

#include <string>

namespace Utilities {

/// The directory of the running program, up to and including its last separator. Returns 0, also
/// when the program's path holds no separator (directory is then left as it was), or 13 when the
/// path cannot be read.
int GetModuleDirectory(std::string& directory);

/// The path of a file beside the program; relative to the working directory when the program's
/// directory cannot be told.
std::string PathBesideProgram(const std::string& fileName);

} // namespace Utilities
