#pragma once

#include "Tools/SarvexTool/Bench/Core/Problems.h"

#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace Bench {

/// What problems have in common that say the same of several places. Kinds are told apart by their
/// addresses.
struct ProblemKind {
    Severity severity;
    /// What the places are called when there are too many to name each: "empty cells".
    const char* many;
};

/// Gathers the problems of a file. Of a kind that a file is full of, the first ones are named and
/// the others counted, so that a file of a million mistakes can be read about.
class ProblemList {
public:
    static constexpr std::size_t MostOfAKind = 100;

    void Add(const ProblemKind& kind, LineNumber line, std::uint32_t column, std::string text);

    /// Counts so many that are not named. To be called after those that are.
    void AddCounted(const ProblemKind& kind, std::size_t count) { m_counts[&kind] += count; }

    /// How many there are of a severity, named or counted.
    std::size_t Count(Severity severity) const;
    std::size_t Count(const ProblemKind& kind) const;

    /// By their lines and columns; those that were only counted come last, one of line 0 for each
    /// kind.
    std::vector<Problem> InOrder() const;

private:
    std::map<const ProblemKind*, std::size_t> m_counts;
    std::vector<Problem> m_problems;
};

} // namespace Bench
