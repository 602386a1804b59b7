#pragma once

#include "Tools/Vemo/VemoSimulator/Answer.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace VemoSimulator {

enum class FaultValueKind { None, Number, Chain, Text, File };

/// The value after a fault's name: the number, or else the text (of a file, its content).
struct FaultValue {
    std::uint64_t number = 0;
    std::string text;
};

struct FaultRow {
    std::string_view name;
    /// How the value is written in descriptions: "=N", "[=MS]".
    std::string_view valueText;
    FaultValueKind kind;
    std::uint64_t highestNumber;
    /// The number when none is given; nothing where one must be given.
    std::optional<std::uint64_t> defaultNumber;
    std::string_view description;
    void (*apply)(AnswerPlan& plan, const FaultValue& value);
};

/// All faults.
std::span<const FaultRow> FaultTable();

} // namespace VemoSimulator
