#pragma once

#include "Tools/SarvexTool/Bench/Core/Decimal.h"

#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace Bench {

/// A JSON string in ASCII without "<": such a text neither ends a script element nor begins a
/// comment in it.
std::string Quoted(std::string_view text);

/// The number as a JSON string, so that no digit is lost.
std::string DecimalOrNull(const std::optional<Decimal>& number);

/// Gives each text of a page its place.
class TextPlaces {
public:
    /// -1 for null.
    std::string PlaceOf(const std::string* text) { return text == nullptr ? "-1" : PlaceOf(*text); }
    std::string PlaceOf(const std::string& text);

    /// All texts until now, without the brackets.
    const std::string& ToJson() const { return m_json; }

private:
    std::unordered_map<std::string, std::size_t> m_places;
    std::string m_json;
};

/// Writes the elements of an array, each on a line of its own.
class JsonLines {
public:
    explicit JsonLines(std::ostream& out) : m_out(out) {}

    /// The stream, after what separates the next element from the one before.
    std::ostream& Next();

private:
    std::ostream& m_out;
    bool m_isFirst = true;
};

} // namespace Bench
