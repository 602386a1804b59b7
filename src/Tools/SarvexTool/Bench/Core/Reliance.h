#pragma once

#include "Tools/SarvexTool/Bench/Core/LineRange.h"
#include "Tools/SarvexTool/Bench/Core/ProblemList.h"
#include "Tools/SarvexTool/Bench/Core/Settings.h"

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace Bench {

/// Lines that do not write some settings themselves, and the line before them that does.
struct Reliance {
    /// 0 where no line before has set them.
    LineNumber on = 0;
    LineRange lines;
    /// A bit for each setting.
    std::uint16_t settings = 0;

    /// The settings' names, "Band, Mode".
    std::string Names() const;

    bool operator==(const Reliance&) const = default;
};
static_assert(SettingCount <= 16);

/// Finds what the lines of a plan rely on, taken in their order. What a line does not write is what
/// the last line before that wrote it has left: the lines between two that write a setting all rely
/// on the first of them.
class RelianceFinder {
public:
    void Add(LineNumber line, const Settings& own);

    /// Of those on a line: the first ones, as many as a ProblemList names of a kind, in the order
    /// of the lines relied on; before them those on no line. To be called once, after all lines.
    std::vector<Reliance> Take();

    /// How many there are on a line, with those that Take leaves out.
    std::size_t CountOnLines() const { return m_count; }

private:
    /// What the lines so far have relied on for these settings.
    void End(unsigned settings);
    void Keep(const Reliance& reliance);
    void KeepFirst();

    /// The line that wrote each setting last.
    std::array<LineNumber, SettingCount> m_writtenBy{};
    LineNumber m_first = 0;
    LineNumber m_last = 0;
    std::vector<Reliance> m_onNothing;
    std::vector<Reliance> m_onLines;
    std::size_t m_count = 0;
};

/// Tells what a plan's lines rely on, for somebody who cuts it: settings that no line has set, and
/// lines that a daemon might refuse.
void TellReliances(RelianceFinder& finder, ProblemList& problems);

} // namespace Bench
