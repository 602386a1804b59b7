#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace Bench {

/// Takes the rows off a result.csv that a client writes meanwhile, byte for byte. The file may not
/// be there yet.
class RowReader {
public:
    /// Whether the file begins with a header.
    RowReader(std::string name, bool hasHeader);

    /// The next row that is whole, with its line end; nothing where there is none yet.
    std::optional<std::string> TakeRow();

    /// The header with its line end; empty until it is whole, and where there is none.
    const std::string& Header();

private:
    std::optional<std::string> TakeLine();

    std::string m_name;
    bool m_hasHeader;
    std::string m_header;
    /// Where the next line begins.
    std::uint64_t m_place = 0;
};

} // namespace Bench
