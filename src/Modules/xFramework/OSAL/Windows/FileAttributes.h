#pragma once

#include "Modules/xFramework/OSAL/File.h"

#include <windows.h>

namespace OSAL {

/// What a path is whose attributes are these bits, INVALID_FILE_ATTRIBUTES for one that cannot be
/// looked at. The tag is that of the reparse point, if it is one: only a symbolic link's makes it a
/// link, and no mount point's or other's.
inline PathKind KindOf(DWORD attributes, DWORD reparseTag) {
    if (attributes == INVALID_FILE_ATTRIBUTES)
        return {};
    return {.isDirectory = (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0,
            .isSymbolicLink = (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 &&
                              reparseTag == IO_REPARSE_TAG_SYMLINK,
            .isToBeArchived = (attributes & FILE_ATTRIBUTE_ARCHIVE) != 0};
}

} // namespace OSAL
