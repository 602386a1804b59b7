#pragma once

#include "Tools/SarvexTool/Bench/Core/Configurations.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace Bench {

/// Consecutive lines that one client runs.
struct Segment {
    LineNumber firstLine = 0;
    std::size_t lines = 0;
};

/// What an exchange of a client is for.
enum class ExchangeKind : std::uint8_t { FirstCommand, MacType, CountryCode, Start, Stop };

/// Counts the exchanges of one client, which is what tells them apart: texts do not, for cells hold
/// any text.
class ClientExchanges {
public:
    ClientExchanges() = default;
    explicit ClientExchanges(const Segment& segment) : m_segment(segment) {}

    /// What the next one is for; only where IsComplete says no.
    ExchangeKind Next() const;
    /// The line that the next one is for, a start or a stop.
    LineNumber NextLine() const;
    /// Whether the client has had all that its lines need.
    bool IsComplete() const;

    void Count() { ++m_count; }

    /// In words, what the last one was for before the first line; "the beginning of a segment"
    /// before any.
    std::string LastInWords() const;

private:
    Segment m_segment;
    std::size_t m_count = 0;
};

} // namespace Bench
