#pragma once

#include <fstream>
#include <string>
#include <string_view>
#include <vector>

namespace PowerTest {

using Fields = std::vector<std::string>;

/// The text without the carriage returns, line feeds, tabs and spaces around it; a text of nothing
/// but these stays as it is.
std::string TrimField(const std::string& text);

/// The same part of the text itself.
std::string_view TrimmedView(std::string_view text);

/// Cuts a line of the test file at its commas and trims the fields. A run of commas is one
/// separator and commas at either end separate nothing, so an empty cell is no field at all and
/// what follows it moves one column to the left. The test files are written with that in mind: a
/// cell that is to stay unset holds "-".
Fields SplitFields(const std::string& line);

/// The same fields as parts of the line itself, in place of what the list holds.
void SplitFields(std::string_view line, std::vector<std::string_view>& fields);

/// The first field of a header that is the name of no column; null when all are names of columns,
/// and when there is no field. With such a field the header counts for nothing.
const std::string* FindUnknownColumn(const Fields& header);

/// The files of a test run: the test file for reading, in text mode, and the two result files,
/// which are created anew. All are closed when the object goes.
struct TestFiles {
    TestFiles(const std::string& testFileName, const std::string& csvFileName,
              const std::string& xmlFileName);

    /// Whether all three are open and the test file can be read; on some systems a directory can be
    /// opened.
    bool AreOpen() const { return test.is_open() && !test.bad() && csv.is_open() && xml.is_open(); }

    std::ifstream test;
    std::ofstream csv;
    std::ofstream xml;
};

} // namespace PowerTest
