#include "Modules/xFramework/Utilities/FileLink.h"

#include "Modules/xFramework/OSAL/File.h"
#include "Modules/xFramework/Utilities/Format.h"

namespace Utilities {

bool IsLink(const std::string& path) {
    const std::uint32_t attributes = OSAL::ReadFileAttributes(path);
    if (attributes == OSAL::InvalidFileAttributes || (attributes & OSAL::ArchiveAttribute) == 0)
        return false;
    const bool isSymbolicLink = (attributes & OSAL::ReparsePointAttribute) != 0 &&
                                OSAL::ReadReparseTag(path) == OSAL::SymbolicLinkTag;
    return isSymbolicLink || OSAL::CountHardLinks(path) > 1;
}

std::string LinkMessage(const std::string& path) {
    return FillTemplate("File ${1} is a link", {path});
}

} // namespace Utilities
