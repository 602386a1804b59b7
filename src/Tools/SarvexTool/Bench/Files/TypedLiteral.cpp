#include "Tools/SarvexTool/Bench/Files/TypedLiteral.h"

#include <algorithm>
#include <array>

namespace Bench {

namespace {

/// The type names that the client registers.
constexpr std::array<std::string_view, 14> typeNames{
    "int8",   "uint8", "short", "int16",  "uint16", "int",  "int32",
    "uint32", "long",  "int64", "uint64", "double", "bool", "string"};

} // namespace

bool IsTypedLiteral(std::string_view text) {
    if (text.size() < 2 || text.front() != '{' || text.back() != '}')
        return false;
    const std::string_view inside = text.substr(1, text.size() - 2);
    const std::size_t colon = inside.find(':');
    return colon != std::string_view::npos && colon + 1 < inside.size() &&
           std::find(typeNames.begin(), typeNames.end(), inside.substr(0, colon)) !=
               typeNames.end();
}

} // namespace Bench
