#include "Modules/xFramework/Utilities/ModuleDirectory.h"

#include "Modules/xFramework/OSAL/Process.h"

namespace Utilities {

int GetModuleDirectory(std::string& directory) {
    constexpr int pathUnreadable = 13;
    std::string path;
    if (!OSAL::ReadModulePath(path))
        return pathUnreadable;
    const std::size_t separator = path.rfind(OSAL::PathSeparator);
    if (separator != std::string::npos)
        directory = path.substr(0, separator + 1);
    return 0;
}

std::string PathBesideProgram(const std::string& fileName) {
    std::string directory;
    GetModuleDirectory(directory);
    return directory + fileName;
}

} // namespace Utilities
