#include "Tools/SarvexTool/Bench/Core/Reliance.h"

#include <algorithm>
#include <tuple>

namespace Bench {

namespace {

constexpr ProblemKind unsetKind{Severity::Warning, "settings that no line has set"};
constexpr ProblemKind relianceKind{Severity::Warning, "lines that others take settings from"};

bool IsBefore(const Reliance& left, const Reliance& right) {
    return std::tie(left.on, left.lines.last) < std::tie(right.on, right.lines.last);
}

/// "lines 3 to 40 take" or "line 3 takes"
std::string LinesWith(const LineRange& lines, const std::string& verb) {
    if (lines.Count() == 1)
        return "line " + std::to_string(lines.first) + " " + verb + "s";
    return "lines " + std::to_string(lines.first) + " to " + std::to_string(lines.last) + " " +
           verb;
}

std::string SentenceOnNoLine(const Reliance& reliance) {
    return LinesWith(reliance.lines, "leave") + " out " + reliance.Names() +
           ", which no line has set: each bench's own value counts there, or what another chunk "
           "has left; set it in line " +
           std::to_string(reliance.lines.first);
}

std::string SentenceOnLine(const Reliance& reliance) {
    const std::string on = "line " + std::to_string(reliance.on);
    std::string text = LinesWith(reliance.lines, "take");
    text.append(" ").append(reliance.Names()).append(" from ").append(on);
    text.append("; should the daemon refuse ").append(on);
    text += ", one run of the whole plan would use other settings there than the chunks do";
    return text;
}

} // namespace

std::string Reliance::Names() const {
    std::string names;
    for (std::size_t index = 0; index < SettingCount; ++index) {
        if ((settings >> index & 1U) != 0)
            names.append(names.empty() ? "" : ", ").append(NameOf(static_cast<Setting>(index)));
    }
    return names;
}

void RelianceFinder::Add(LineNumber line, const Settings& own) {
    if (m_first == 0)
        m_first = line;
    unsigned written = 0;
    for (std::size_t index = 0; index < SettingCount; ++index)
        written |= unsigned{own[static_cast<Setting>(index)] != nullptr} << index;
    End(written);
    for (std::size_t index = 0; index < SettingCount; ++index) {
        if ((written >> index & 1U) != 0)
            m_writtenBy[index] = line;
    }
    m_last = line;
}

void RelianceFinder::End(unsigned settings) {
    for (std::size_t index = 0; index < SettingCount; ++index) {
        if ((settings >> index & 1U) == 0)
            continue;
        unsigned same = 0;
        for (std::size_t other = index; other < SettingCount; ++other)
            same |= unsigned{m_writtenBy[other] == m_writtenBy[index]} << other;
        same &= settings;
        settings &= ~same;
        const LineNumber on = m_writtenBy[index];
        const LineRange lines{on == 0 ? m_first : on + 1, m_last};
        if (lines.first <= lines.last)
            Keep({on, lines, static_cast<std::uint16_t>(same)});
    }
}

void RelianceFinder::Keep(const Reliance& reliance) {
    if (reliance.on == 0) {
        m_onNothing.push_back(reliance);
        return;
    }
    ++m_count;
    m_onLines.push_back(reliance);
    if (m_onLines.size() > 2 * ProblemList::MostOfAKind)
        KeepFirst();
}

/// Those that end late may be on an early line, so that the first ones are not the first to come.
void RelianceFinder::KeepFirst() {
    const std::size_t count = std::min(m_onLines.size(), ProblemList::MostOfAKind);
    std::partial_sort(m_onLines.begin(), m_onLines.begin() + static_cast<std::ptrdiff_t>(count),
                      m_onLines.end(), IsBefore);
    m_onLines.resize(count);
}

std::vector<Reliance> RelianceFinder::Take() {
    if (m_first != 0)
        End((1U << SettingCount) - 1);
    KeepFirst();
    std::vector<Reliance> all = std::move(m_onNothing);
    std::sort(all.begin(), all.end(), IsBefore);
    all.insert(all.end(), m_onLines.begin(), m_onLines.end());
    return all;
}

void TellReliances(RelianceFinder& finder, ProblemList& problems) {
    std::size_t named = 0;
    for (const Reliance& found : finder.Take()) {
        if (found.on == 0) {
            problems.Add(unsetKind, found.lines.first, 0, SentenceOnNoLine(found));
            continue;
        }
        ++named;
        problems.Add(relianceKind, found.on, 0, SentenceOnLine(found));
    }
    problems.AddCounted(relianceKind, finder.CountOnLines() - named);
}

} // namespace Bench
