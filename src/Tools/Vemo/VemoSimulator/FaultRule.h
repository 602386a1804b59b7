#pragma once

#include "Tools/Vemo/VemoSimulator/Answer.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace VemoSimulator {

/// Makes the answers to some commands faulty. As text "WHICH:FAULT" or "WHICH:FAULT=VALUE", where
/// WHICH is the number of a command (from 1), "text=" and a text that the command holds, or "*" for
/// every command; it ends at the first colon.
class FaultRule {
public:
    /// Reads the file that the rule names, if it names one. Throws std::invalid_argument with a
    /// message that says what is wrong with the text.
    explicit FaultRule(const std::string& text);

    /// command is the body of the request.
    bool Matches(std::uint64_t number, const std::string& command) const;

    void ApplyTo(AnswerPlan& plan) const { m_apply(plan); }

    /// The rule as it was given.
    const std::string& Text() const { return m_text; }

private:
    void ParseSelector(const std::string& selector);

    std::string m_text;
    /// 0 when the rule does not go by number.
    std::uint64_t m_number = 0;
    /// Every command holds the empty text.
    std::string m_commandText;
    std::function<void(AnswerPlan&)> m_apply;
};

/// The names of all faults.
std::vector<std::string> FaultNames();

/// One line for each fault: how it is written and what it does.
std::string DescribeFaults();

} // namespace VemoSimulator
