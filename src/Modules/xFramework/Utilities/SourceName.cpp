#include "Modules/xFramework/Utilities/SourceName.h"

namespace Utilities {

std::string SourceName(const std::string& path) {
    const std::string rooted = "/" + path;
    const std::size_t root = rooted.rfind("/src/");
    const std::string name = path.substr(root == std::string::npos ? 0 : root);
    const std::size_t fileName = name.rfind('/') + 1;
    const std::size_t extension = name.find('.', fileName);
    return name.substr(0, extension);
}

} // namespace Utilities
