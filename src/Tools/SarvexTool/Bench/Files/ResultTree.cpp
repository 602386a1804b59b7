#include "Tools/SarvexTool/Bench/Files/ResultTree.h"

#include "Tools/SarvexTool/Bench/Files/FileNames.h"
#include "Tools/Vemo/VemoClient/DynamicTest/Columns.h"

#include <expat.h>

#include <array>
#include <fstream>
#include <memory>
#include <string_view>
#include <type_traits>
#include <utility>

namespace Bench {

namespace {

/// An error is said with this name, whatever the folder: the tree has no other.
const std::string treeName = "result.xml";

using Parser = std::unique_ptr<std::remove_pointer_t<XML_Parser>, decltype(&XML_ParserFree)>;

/// What the first element says.
struct FirstElement {
    XML_Parser parser;
    std::string name;
    std::optional<std::string> countryCode;
};

void XMLCALL TakeFirstElement(void* pData, const XML_Char* name, const XML_Char** attributes) {
    FirstElement& element = *static_cast<FirstElement*>(pData);
    // The rest is only read to know whether it is XML.
    XML_SetStartElementHandler(element.parser, nullptr);
    element.name = name;
    for (; *attributes != nullptr; attributes += 2) {
        if (std::string_view(*attributes) == "MCC")
            element.countryCode = *(attributes + 1);
    }
}

DeviceFacts Unknown(std::string why) {
    return {std::nullopt, std::move(why)};
}

DeviceFacts NotXml(XML_Parser parser) {
    return Unknown(treeName + " is not XML: line " +
                   std::to_string(XML_GetCurrentLineNumber(parser)) + ": " +
                   XML_ErrorString(XML_GetErrorCode(parser)));
}

DeviceFacts FactsOf(const FirstElement& element) {
    if (element.name != "PowerTable" || !element.countryCode)
        return Unknown(treeName + " is not the result of a power test");
    if (element.countryCode == PowerTest::unsetCell)
        return Unknown("the daemon told none");
    return {element.countryCode, ""};
}

} // namespace

DeviceFacts ReadResultTree(std::istream& xml) {
    const Parser parser(XML_ParserCreate(nullptr), &XML_ParserFree);
    if (!parser)
        throw std::bad_alloc();
    FirstElement element{parser.get(), {}, {}};
    XML_SetUserData(parser.get(), &element);
    XML_SetStartElementHandler(parser.get(), &TakeFirstElement);
    constexpr std::size_t blockSize = 65536;
    std::array<char, blockSize> block;
    bool isEmpty = true;
    while (xml) {
        xml.read(block.data(), blockSize);
        const auto size = static_cast<int>(xml.gcount());
        isEmpty = isEmpty && size == 0;
        if (xml.bad())
            return Unknown(treeName + " cannot be read");
        if (isEmpty)
            return Unknown(treeName + " is empty, because the run did not reach its end");
        if (XML_Parse(parser.get(), block.data(), size, int{!xml}) != XML_STATUS_OK)
            return NotXml(parser.get());
    }
    return FactsOf(element);
}

DeviceFacts ReadResultTree(const std::string& name) {
    const std::filesystem::path path = PathOf(name);
    std::error_code ignored;
    if (!std::filesystem::exists(path, ignored))
        return Unknown(treeName + " is missing");
    std::ifstream file(path, std::ios::binary);
    if (!file || std::filesystem::is_directory(path, ignored))
        return Unknown(treeName + " cannot be read");
    return ReadResultTree(file);
}

} // namespace Bench
