#include "Modules/xFramework/Utilities/ProgramFiles.h"

#include "Modules/xFramework/OSAL/File.h"
#include "Modules/xFramework/OSAL/Process.h"
#include "Modules/xFramework/Utilities/Format.h"

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
    GetModuleDirectory(directory); // A failure leaves it empty: the working directory then.
    return directory + fileName;
}

bool IsLink(const std::string& path) {
    const OSAL::PathKind kind = OSAL::LookAtPath(path);
    return kind.isToBeArchived && (kind.isSymbolicLink || OSAL::CountNames(path) > 1);
}

std::string LinkMessage(const std::string& path) {
    return FillTemplate("File ${1} is a link", {path});
}

} // namespace Utilities
