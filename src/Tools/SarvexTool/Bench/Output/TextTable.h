#pragma once

#include <cstddef>
#include <ostream>
#include <string>
#include <vector>

namespace Bench {

/// A table of texts in columns as wide as their widest cell. The first columns begin at the left,
/// all others end at the right.
class TextTable {
public:
    /// The titles, and how many of the first columns begin at the left.
    TextTable(std::vector<std::string> titles, std::size_t leftColumns);

    /// Cells are made harmless. A row has as many as there are titles.
    void Add(const std::vector<std::string>& cells);

    void Print(std::ostream& stream) const;

private:
    std::vector<std::vector<std::string>> m_rows;
    std::size_t m_leftColumns;
};

} // namespace Bench
