#include "Tools/Vemo/VemoSimulator/FaultRule.h"

#include "Tools/Vemo/VemoSimulator/FaultTable.h"
#include "Tools/Vemo/VemoSimulator/Text.h"

#include <algorithm>
#include <fstream>
#include <optional>
#include <span>
#include <stdexcept>
#include <utility>

namespace VemoSimulator {

namespace {

[[noreturn]] void Refuse(const std::string& message) {
    throw std::invalid_argument(message);
}

[[noreturn]] void RefuseValue(const FaultRow& row, const std::string& problem) {
    Refuse("fault " + std::string(row.name) + " " + problem);
}

FaultValue ParseNumber(const FaultRow& row, const std::optional<std::string>& text) {
    if (!text && row.defaultNumber)
        return {*row.defaultNumber, ""};
    const auto number = ParseDecimal(text.value_or(""));
    if (!number || *number > row.highestNumber)
        RefuseValue(row, "needs a number from 0 to " + std::to_string(row.highestNumber));
    return {*number, ""};
}

FaultValue ParseChain(const FaultRow& row, const std::optional<std::string>& text) {
    if (text != "A" && text != "B")
        RefuseValue(row, "needs the chain A or B");
    return {0, *text};
}

FaultValue ParseText(const FaultRow& row, const std::optional<std::string>& text) {
    if (!text || text->find_first_of("\r\n") != std::string::npos)
        RefuseValue(row, "needs a text of one line");
    return {0, *text};
}

/// Nothing when the file cannot be read to its end, as a directory cannot.
std::optional<std::string> ReadWholeFile(const std::string& path) {
    constexpr std::streamsize blockSize = 65536;
    std::ifstream file(path, std::ios::binary);
    std::string content;
    std::vector<char> block(blockSize);
    while (file.read(block.data(), blockSize) || file.gcount() > 0)
        content.append(block.data(), static_cast<std::size_t>(file.gcount()));
    if (!file.eof() || file.bad())
        return std::nullopt;
    return content;
}

FaultValue ParseFile(const FaultRow& row, const std::optional<std::string>& path) {
    if (!path)
        RefuseValue(row, "needs a file name");
    auto content = ReadWholeFile(*path);
    if (!content)
        RefuseValue(row, "cannot read the file " + *path);
    return {0, std::move(*content)};
}

FaultValue ParseNothing(const FaultRow& row, const std::optional<std::string>& text) {
    if (text)
        RefuseValue(row, "takes no value");
    return {};
}

FaultValue ParseValue(const FaultRow& row, const std::optional<std::string>& text) {
    switch (row.kind) {
    case FaultValueKind::Number:
        return ParseNumber(row, text);
    case FaultValueKind::Chain:
        return ParseChain(row, text);
    case FaultValueKind::Text:
        return ParseText(row, text);
    case FaultValueKind::File:
        return ParseFile(row, text);
    case FaultValueKind::None:
        break;
    }
    return ParseNothing(row, text);
}

std::function<void(AnswerPlan&)> ParseFault(const std::string& fault) {
    const std::size_t equals = fault.find('=');
    const std::string name = fault.substr(0, equals);
    const auto row = std::ranges::find(FaultTable(), name, &FaultRow::name);
    if (row == FaultTable().end())
        Refuse("unknown fault '" + name + "'");
    std::optional<std::string> text;
    if (equals != std::string::npos)
        text = fault.substr(equals + 1);
    return [apply = row->apply, value = ParseValue(*row, text)](AnswerPlan& plan) {
        apply(plan, value);
    };
}

} // namespace

FaultRule::FaultRule(const std::string& text) : m_text(text) {
    const std::size_t colon = text.find(':');
    if (colon == std::string::npos)
        Refuse("a fault rule is written WHICH:FAULT, not '" + text + "'");
    ParseSelector(text.substr(0, colon));
    m_apply = ParseFault(text.substr(colon + 1));
}

void FaultRule::ParseSelector(const std::string& selector) {
    constexpr std::string_view textSelector = "text=";
    if (selector == "*")
        return;
    if (selector.starts_with(textSelector) && selector.size() > textSelector.size()) {
        m_commandText = selector.substr(textSelector.size());
        return;
    }
    m_number = ParseDecimal(selector).value_or(0);
    if (m_number == 0)
        Refuse("a fault rule begins with a number from 1, text=TEXT or *, not '" + selector + "'");
}

bool FaultRule::Matches(std::uint64_t number, const std::string& command) const {
    const bool hasNumber = m_number == 0 || m_number == number;
    return hasNumber && command.find(m_commandText) != std::string::npos;
}

std::vector<std::string> FaultNames() {
    std::vector<std::string> names;
    for (const FaultRow& row : FaultTable())
        names.emplace_back(row.name);
    return names;
}

std::string DescribeFaults() {
    constexpr std::size_t columnWidth = 20;
    std::string description;
    for (const FaultRow& row : FaultTable()) {
        std::string line = "  " + std::string(row.name).append(row.valueText);
        line.resize(std::max(columnWidth, line.size() + 1), ' ');
        description.append(line).append(row.description).append("\n");
    }
    return description;
}

} // namespace VemoSimulator
