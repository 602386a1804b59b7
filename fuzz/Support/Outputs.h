#pragma once

#include <cstddef>
#include <string>

// What each kind of output must be, whatever texts of files are in it. A text that is not fails the
// input.

/// Text for a terminal: lines of UTF-8 without control characters, escape sequences and characters
/// that reorder what is beside them.
void CheckTerminalText(const std::string& text);

/// XML that is well formed, with so many elements of a name.
void CheckXml(const std::string& text, const char* element, std::size_t count);

void CheckJson(const std::string& text);

/// A table whose rows have as many cells as its header, and in which a spreadsheet finds no formula
/// and no second separator.
void CheckCsv(const std::string& text, std::size_t rows);

/// A page without control characters, whose scripts, styles, comments and links are as many as
/// those of another page, and whose data is JSON.
void CheckPage(const std::string& text, const std::string& other);
