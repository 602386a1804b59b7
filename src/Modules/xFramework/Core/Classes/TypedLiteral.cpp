#include "Modules/xFramework/Core/Classes/TypedLiteral.h"

namespace Core {

TypedLiteral SplitTypedLiteral(const std::string& text) {
    if (!text.starts_with('{') || !text.ends_with('}'))
        return {text, ""};
    const std::string inside = text.substr(1, text.size() - 2);
    const std::size_t colon = inside.find(':');
    if (colon == std::string::npos)
        return {inside, ""};
    return {inside.substr(0, colon), inside.substr(colon + 1)};
}

} // namespace Core
