#include "Tools/Vemo/VemoClient/DynamicTest/TestFile.h"

namespace PowerTest {

std::string TrimField(const std::string& text) {
    constexpr const char* whiteSpace = "\r\n\t ";
    const std::size_t first = text.find_first_not_of(whiteSpace);
    if (first == std::string::npos)
        return text;
    return text.substr(first, text.find_last_not_of(whiteSpace) + 1 - first);
}

Fields SplitFields(const std::string& line) {
    Fields fields;
    std::size_t start = line.find_first_not_of(',');
    while (start != std::string::npos) {
        const std::size_t end = line.find(',', start);
        fields.push_back(TrimField(line.substr(start, end - start)));
        start = line.find_first_not_of(',', end);
    }
    return fields;
}

TestFiles::TestFiles(const std::string& testFileName, const std::string& csvFileName,
                     const std::string& xmlFileName)
    : test(testFileName), csv(csvFileName), xml(xmlFileName) {
    // The first read tells a directory from a file. An empty file is no error here: the
    // header line is read whether that works or not.
    test.peek();
}

} // namespace PowerTest
