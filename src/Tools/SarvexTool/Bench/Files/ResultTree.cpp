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

/// An open element takes memory until its end, and a result has six of them in one another.
constexpr int deepest = 10000;

/// What is known of the tree while it is read.
struct Reading {
    XML_Parser parser;
    int depth = 0;
    bool hasFirst = false;
    bool isTooDeep = false;
    /// Of the first element. The rest is only read to know whether it is XML.
    std::string name = {};
    std::optional<std::string> countryCode = {};
};

void TakeFirst(Reading& reading, const XML_Char* name, const XML_Char** attributes) {
    reading.hasFirst = true;
    reading.name = name;
    for (; *attributes != nullptr; attributes += 2) {
        if (std::string_view(*attributes) == "MCC")
            reading.countryCode = *(attributes + 1);
    }
}

void XMLCALL Begin(void* pReading, const XML_Char* name, const XML_Char** attributes) {
    Reading& reading = *static_cast<Reading*>(pReading);
    if (!reading.hasFirst)
        TakeFirst(reading, name, attributes);
    reading.isTooDeep = ++reading.depth > deepest;
    if (reading.isTooDeep)
        XML_StopParser(reading.parser, XML_FALSE);
}

void XMLCALL End(void* pReading, const XML_Char* /*name*/) {
    --static_cast<Reading*>(pReading)->depth;
}

DeviceFacts Unknown(std::string why) {
    return {std::nullopt, std::move(why)};
}

DeviceFacts NotXml(const Reading& reading) {
    XML_Parser parser = reading.parser;
    if (reading.isTooDeep)
        return Unknown(treeName + " is not the result of a power test: its elements are in one "
                                  "another too deeply");
    return Unknown(treeName + " is not XML: line " +
                   std::to_string(XML_GetCurrentLineNumber(parser)) + ": " +
                   XML_ErrorString(XML_GetErrorCode(parser)));
}

DeviceFacts FactsOf(const Reading& reading) {
    if (reading.name != "PowerTable" || !reading.countryCode)
        return Unknown(treeName + " is not the result of a power test");
    if (reading.countryCode == PowerTest::unsetCell)
        return Unknown("the daemon told none");
    return {reading.countryCode, ""};
}

} // namespace

DeviceFacts ReadResultTree(std::istream& xml) {
    const Parser parser(XML_ParserCreate(nullptr), &XML_ParserFree);
    if (!parser)
        throw std::bad_alloc();
    Reading reading{parser.get()};
    XML_SetUserData(parser.get(), &reading);
    XML_SetElementHandler(parser.get(), &Begin, &End);
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
            return NotXml(reading);
    }
    return FactsOf(reading);
}

DeviceFacts ReadResultTree(const std::string& name) {
    const std::filesystem::path path = PathOf(name);
    std::error_code ignored;
    if (!std::filesystem::exists(path, ignored))
        return Unknown(treeName + " is missing");
    // Opening a pipe would wait for somebody who writes into it.
    std::ifstream file;
    if (std::filesystem::is_regular_file(path, ignored))
        file.open(path, std::ios::binary);
    if (!file.is_open())
        return Unknown(treeName + " cannot be read");
    return ReadResultTree(file);
}

} // namespace Bench
