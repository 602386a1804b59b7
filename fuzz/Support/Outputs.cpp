#include "fuzz/Support/Outputs.h"

#include "fuzz/Support/Check.h"

#include <nlohmann/json.hpp>
#include <pugixml.hpp>

#include <algorithm>
#include <string_view>
#include <vector>

namespace {

bool IsUtf8(const std::string& text) {
    try {
        return !nlohmann::json(text).dump().empty();
    } catch (const nlohmann::json::exception&) {
        return false;
    }
}

bool IsPrintable(char character) {
    return static_cast<unsigned char>(character) >= 0x20 && character != 0x7F;
}

/// The cells of a row, quotes taken off, and the rest of the text after it.
std::vector<std::string> TakeCsvRow(std::string_view& text) {
    std::vector<std::string> cells(1);
    bool isQuoted = false;
    while (!text.empty()) {
        const char character = text.front();
        text.remove_prefix(1);
        if (character == '"' && isQuoted && text.starts_with('"')) {
            cells.back() += character;
            text.remove_prefix(1);
        } else if (character == '"') {
            isQuoted = !isQuoted;
        } else if (character == ',' && !isQuoted) {
            cells.emplace_back();
        } else if (character == '\n' && !isQuoted) {
            return cells;
        } else {
            Check(isQuoted || character != ';', "a semicolon is within quotes");
            cells.back() += character;
        }
    }
    FailProperty("the last row of a table ends", "");
}

bool IsNumber(const std::string& cell) {
    return cell.find_first_not_of("0123456789.", cell.find_first_not_of("+-")) == std::string::npos;
}

void CheckNoFormula(const std::string& cell) {
    const std::size_t start = cell.find_first_not_of(" \t\r\n");
    if (start == std::string::npos || cell == "-" || (IsNumber(cell) && cell.size() > 1))
        return;
    Check(std::string_view("=+-@").find(cell[start]) == std::string_view::npos,
          "no cell is a formula");
    for (const char* const wide : {"\xEF\xBC\x9D", "\xEF\xBC\x8B", "\xEF\xBC\x8D", "\xEF\xBC\xA0"})
        Check(!cell.substr(start).starts_with(wide), "no cell is a formula in wide characters");
}

std::size_t Count(const std::string& text, std::string_view part) {
    std::size_t count = 0;
    for (std::size_t hit = text.find(part); hit != std::string::npos;
         hit = text.find(part, hit + 1))
        ++count;
    return count;
}

} // namespace

void CheckTerminalText(const std::string& text) {
    for (const char character : text)
        Check(IsPrintable(character) || character == '\n', "no control byte reaches a terminal");
    Check(IsUtf8(text), "what reaches a terminal is UTF-8");
    // A control of eight bits, marks and overrides of direction, isolates, a byte order mark.
    for (const char* const start :
         {"\xC2\x80", "\xC2\x9B", "\xE2\x80\x8E", "\xE2\x80\x8F", "\xE2\x80\xAA", "\xE2\x80\xAE",
          "\xE2\x81\xA6", "\xE2\x81\xA9", "\xEF\xBB\xBF"})
        Check(text.find(start) == std::string::npos, "no hidden character reaches a terminal");
}

void CheckXml(const std::string& text, const char* element, std::size_t count) {
    pugi::xml_document document;
    const pugi::xml_parse_result result =
        document.load_buffer(text.data(), text.size(), pugi::parse_full);
    CheckEqual(std::string(result.description()), "No error", "the XML is well formed");
    CheckTerminalText(text);
    CheckEqual(document.select_nodes((std::string("//") + element).c_str()).size(), count,
               "no text becomes an element");
}

void CheckJson(const std::string& text) {
    Check(nlohmann::json::accept(text), "the JSON can be read");
}

void CheckCsv(const std::string& text, std::size_t rows) {
    CheckTerminalText(text);
    std::string_view rest = text;
    const std::size_t width = TakeCsvRow(rest).size();
    for (std::size_t row = 0; row < rows; ++row) {
        const std::vector<std::string> cells = TakeCsvRow(rest);
        CheckEqual(cells.size(), width, "each row has the header's cells");
        std::ranges::for_each(cells, CheckNoFormula);
    }
    Check(rest.empty(), "each measurement has one row");
}

void CheckPage(const std::string& text, const std::string& other) {
    CheckTerminalText(text);
    for (const char* const part :
         {"<script", "</script", "<style", "</style", "<!--", "</title", "<img", "<a ", "<iframe"})
        CheckEqual(Count(text, part), Count(other, part), "no text of a run becomes markup");
    const std::string label = "id=\"data\">";
    const std::size_t start = text.find(label) + label.size();
    CheckJson(text.substr(start, text.find("</script", start) - start));
}
