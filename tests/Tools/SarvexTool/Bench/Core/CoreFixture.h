#pragma once

#include "Tools/SarvexTool/Bench/Core/Measurements.h"

#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace Bench {

/// Settings and powers as a test writes them down. The texts are kept as long as the object lives.
class CoreFixture {
public:
    using Cells = std::initializer_list<std::pair<Setting, std::string_view>>;

    Settings Of(Cells cells) {
        Settings settings;
        for (const auto& [setting, text] : cells)
            settings[setting] = m_pool.Keep(text);
        return settings;
    }

    /// A row whose powers are decimals, or "" for none.
    Row RowOf(LineNumber line, Cells cells, std::string_view powerA, std::string_view powerB) {
        return {line, Of(cells), Decimal::Parse(powerA), Decimal::Parse(powerB)};
    }

    const std::string* Text(std::string_view text) { return m_pool.Keep(text); }

private:
    TextPool m_pool;
};

/// A decimal that is written correctly.
inline Decimal operator""_dB(const char* text, std::size_t size) {
    return Decimal::Parse({text, size}).value();
}

/// One line for each measurement: its line's number, its chain, its power or why there is none.
inline std::string Describe(const RunResult& run) {
    std::string text;
    for (const Measurement& measurement : run.measurements) {
        text += std::to_string(run.LineOf(measurement)) + " " + NameOf(measurement.chain) + " ";
        text += measurement.power ? measurement.power->ToText() : measurement.reason.ToText();
        text += "\n";
    }
    return text;
}

} // namespace Bench
