#include "Tools/Vemo/VemoClient/DynamicTest/TestFile.h"

#include "Tools/Vemo/VemoClient/DynamicTest/Columns.h"

#include <algorithm>

namespace PowerTest {

namespace {

bool IsColumnName(const std::string& name) {
    return std::any_of(columnCommands.begin(), columnCommands.end(),
                       [&name](const ColumnCommand& row) { return row.column == name; });
}

} // namespace

std::string TrimField(const std::string& text) {
    return std::string(TrimmedView(text));
}

std::string_view TrimmedView(std::string_view text) {
    constexpr std::string_view whiteSpace = "\r\n\t ";
    const std::size_t first = text.find_first_not_of(whiteSpace);
    if (first == std::string_view::npos)
        return text;
    return text.substr(first, text.find_last_not_of(whiteSpace) + 1 - first);
}

Fields SplitFields(const std::string& line) {
    std::vector<std::string_view> views;
    SplitFields(line, views);
    return {views.begin(), views.end()};
}

void SplitFields(std::string_view line, std::vector<std::string_view>& fields) {
    fields.clear();
    std::size_t start = line.find_first_not_of(',');
    while (start != std::string_view::npos) {
        const std::size_t end = line.find(',', start);
        fields.push_back(TrimmedView(line.substr(start, end - start)));
        start = line.find_first_not_of(',', end);
    }
}

const std::string* FindUnknownColumn(const Fields& header) {
    const auto unknown = std::find_if_not(header.begin(), header.end(), IsColumnName);
    return unknown == header.end() ? nullptr : &*unknown;
}

TestFiles::TestFiles(const std::string& testFileName, const std::string& csvFileName,
                     const std::string& xmlFileName)
    : test(testFileName), csv(csvFileName), xml(xmlFileName) {
    // The first read tells a directory from a file. An empty file is no error here: the
    // header line is read whether that works or not.
    test.peek();
}

} // namespace PowerTest
