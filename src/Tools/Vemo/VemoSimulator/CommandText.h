#pragma once

#include <optional>
#include <string>
#include <vector>

namespace VemoSimulator {

/// The words of a command, from a request's body: "CLI -1 ", perhaps "-vemo", then words separated
/// by blanks. A word in double quotes may hold blanks and loses its quotes. Nothing when the body
/// does not begin with "CLI -1 ".
///
/// Clients put quotes around a word with blanks but do not escape the quotes within it: so a quote
/// ends a quoted word only where a blank or the end of the command follows.
std::optional<std::vector<std::string>> SplitCommand(const std::string& body);

} // namespace VemoSimulator
