#pragma once

#include <string>
#include <vector>

using Fields = std::vector<std::string>;

/// The text without the carriage returns, line feeds, tabs and spaces around it; a text of nothing
/// but these stays as it is.
std::string TrimField(const std::string& text);

/// Cuts a line of the test file at its commas and trims the fields. A run of commas is one
/// separator and commas at either end separate nothing, so an empty cell is no field at all and
/// what follows it moves one column to the left. The test files are written with that in mind: a
/// cell that is to stay unset holds "-".
Fields SplitFields(const std::string& line);
