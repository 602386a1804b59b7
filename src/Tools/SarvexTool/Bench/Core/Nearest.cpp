#include "Tools/SarvexTool/Bench/Core/Nearest.h"

#include <algorithm>
#include <string>
#include <vector>

namespace Bench {

namespace {

/// Longer names are not looked at: the time grows with the square of the length.
constexpr std::size_t longestName = 64;

/// The letters, in lower case, and the digits.
std::string Plain(std::string_view name) {
    std::string plain;
    for (const char character : name) {
        if (character >= 'A' && character <= 'Z')
            plain += static_cast<char>(character - 'A' + 'a');
        else if ((character >= 'a' && character <= 'z') || (character >= '0' && character <= '9'))
            plain += character;
    }
    return plain;
}

/// How many characters have to be inserted, removed, replaced or swapped with their neighbour.
std::size_t Distance(std::string_view from, std::string_view to) {
    using Row = std::vector<std::size_t>;
    Row beforeLast(to.size() + 1);
    Row last(to.size() + 1);
    Row current(to.size() + 1);
    for (std::size_t column = 0; column <= to.size(); ++column)
        last[column] = column;
    for (std::size_t row = 1; row <= from.size(); ++row) {
        current[0] = row;
        for (std::size_t column = 1; column <= to.size(); ++column) {
            const bool isSame = from[row - 1] == to[column - 1];
            current[column] = std::min(
                {last[column] + 1, current[column - 1] + 1, last[column - 1] + (isSame ? 0 : 1)});
            const bool isSwapped = row > 1 && column > 1 && from[row - 1] == to[column - 2] &&
                                   from[row - 2] == to[column - 1];
            if (isSwapped)
                current[column] = std::min(current[column], beforeLast[column - 2] + 1);
        }
        beforeLast.swap(last);
        last.swap(current);
    }
    return last[to.size()];
}

} // namespace

std::string_view NearestName(std::string_view wrong, std::span<const char* const> known) {
    if (wrong.size() > longestName)
        return {};
    const std::string plain = Plain(wrong);
    std::string_view nearest;
    std::size_t nearestDistance = longestName;
    for (const std::string_view name : known) {
        const std::string plainName = Plain(name);
        const std::size_t distance = Distance(plain, plainName);
        // A third of the letters may be wrong.
        if (distance < nearestDistance && distance * 3 <= plainName.size()) {
            nearest = name;
            nearestDistance = distance;
        }
    }
    return nearest;
}

} // namespace Bench
