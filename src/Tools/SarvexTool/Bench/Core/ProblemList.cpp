#include "Tools/SarvexTool/Bench/Core/ProblemList.h"

#include <algorithm>
#include <tuple>
#include <utility>

namespace Bench {

void ProblemList::Add(const ProblemKind& kind, LineNumber line, std::uint32_t column,
                      std::string text) {
    if (++m_counts[&kind] <= MostOfAKind)
        m_problems.push_back({kind.severity, line, column, std::move(text)});
}

std::size_t ProblemList::Count(Severity severity) const {
    std::size_t count = 0;
    for (const auto& [pKind, ofKind] : m_counts)
        count += pKind->severity == severity ? ofKind : 0;
    return count;
}

std::size_t ProblemList::Count(const ProblemKind& kind) const {
    const auto found = m_counts.find(&kind);
    return found == m_counts.end() ? 0 : found->second;
}

std::vector<Problem> ProblemList::InOrder() const {
    std::vector<Problem> problems = m_problems;
    std::stable_sort(
        problems.begin(), problems.end(), [](const Problem& left, const Problem& right) {
            return std::tie(left.line, left.column) < std::tie(right.line, right.column);
        });
    std::vector<Problem> counted;
    for (const auto& [pKind, count] : m_counts) {
        if (count > MostOfAKind)
            counted.push_back(
                {pKind->severity, 0, 0,
                 "and " + std::to_string(count - MostOfAKind) + " more " + pKind->many});
    }
    // Kinds are in no order of their own.
    std::sort(counted.begin(), counted.end(), [](const Problem& left, const Problem& right) {
        return std::tie(left.severity, left.text) < std::tie(right.severity, right.text);
    });
    problems.insert(problems.end(), counted.begin(), counted.end());
    return problems;
}

} // namespace Bench
