#pragma once

// Public, stable within a major version. For any thread. No match is no error; a malformed pattern
// throws std::regex_error by value.

#include <optional>
#include <string>

namespace PowerTest {

/// The patterns of what the daemon tells of its device: the digits of the MAC type, perhaps none,
/// and the country code.
inline constexpr const char* macTypePattern = R"(Mac Type: (\d*))";
inline constexpr const char* countryCodePattern = R"(Current MCC: (\w{2}))";

/// Searches a reply of the daemon with a regular expression (ECMAScript grammar, case-sensitive)
/// and returns what its first group captured in the first match; nothing when there is no match or
/// the group took no part in it. Finds what std::regex_search finds, without its recursion: a line
/// of the reply may have any length, and the time grows with the reply's length only.
///
/// The pattern begins with plain text that no quantifier follows, and matches no line end. When it
/// is malformed, the first reply that holds the plain text throws std::regex_error.
std::optional<std::string> FindInReply(const std::string& reply, const std::string& pattern);

} // namespace PowerTest
