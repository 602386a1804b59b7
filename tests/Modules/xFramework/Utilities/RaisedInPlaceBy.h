#pragma once

#include "Modules/xFramework/Utilities/Exception.h"
#include "tests/Modules/xFramework/Utilities/RaisedBy.h"

#include <cstdint>
#include <fstream>
#include <string>

/// The line of a source file that a location names, without its indentation; empty when there is
/// none. A test program that includes this is compiled with SARVEX_SOURCE_DIR, the folder of the
/// whole tree.
inline std::string SourceLineOf(const Utilities::ErrorLocation& place) {
    std::ifstream source(SARVEX_SOURCE_DIR "/" + place.GetFile() + ".cpp");
    std::string line;
    for (std::uint32_t number = 0; number < place.GetLine(); ++number) {
        if (!std::getline(source, line))
            return "";
    }
    line.erase(0, line.find_first_not_of(' '));
    return line;
}

/// As RaisedBy, for a place that is no fixed figure but the true one: gives "message | file |
/// source | function", where source is how the source line there begins, up to its first bracket.
template <typename Action>
std::string RaisedInPlaceBy(Action action) {
    return RaisedByDetail::Describe(action, [](const Utilities::ErrorLocation& place) {
        const std::string line = SourceLineOf(place);
        return place.GetFile() + " | " + line.substr(0, line.find('('));
    });
}
