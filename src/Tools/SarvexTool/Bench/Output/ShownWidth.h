#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace Bench {

/// How many columns of a terminal a harmless text takes (ShownText.h): two for each character that
/// is as wide as it is high, one for every other.
std::size_t ShownWidth(std::string_view text);

/// As much of a harmless text as so many columns hold; three dots end one that was cut, where there
/// is room for them.
std::string CutToWidth(std::string_view text, std::size_t width);

/// A harmless text in lines of at most 80 columns, each with its end. A word that is longer has a
/// line to itself, uncut: it may be a path. All lines but the first begin with so many blanks.
std::string WrapText(std::string_view text, std::size_t indent);

} // namespace Bench
