#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/// How an input is made of several texts: records are separated by the ASCII record separator,
/// groups of records by the group separator. So the inputs of a corpus can be read and written by
/// hand, and the fuzzer can cut and join texts by changing one byte.
inline constexpr char RecordSeparator = '\x1e';
inline constexpr char GroupSeparator = '\x1d';

std::string ToText(const std::uint8_t* data, std::size_t size);

/// The parts between the separators, empty ones included; one part when there is no separator.
std::vector<std::string> Split(const std::string& text, char separator);

/// Split, with one more part than the last for every index: a missing part is empty.
class Parts {
public:
    Parts(const std::string& text, char separator) : m_parts(Split(text, separator)) {}

    const std::string& operator[](std::size_t index) const;

    /// The parts from that index on.
    std::vector<std::string> From(std::size_t index) const;

private:
    std::vector<std::string> m_parts;
};

/// The text as a caller in C sees it: up to its first NUL.
std::string UpToNul(const std::string& text);

/// The text with an end after its last line, where that has none.
std::string EndLastLine(std::string text);
