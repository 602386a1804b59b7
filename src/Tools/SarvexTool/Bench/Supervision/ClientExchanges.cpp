#include "Tools/SarvexTool/Bench/Supervision/ClientExchanges.h"

#include <algorithm>
#include <array>

namespace Bench {

namespace {

/// The exchanges before the first line.
constexpr std::array<ExchangeKind, 3> ahead{ExchangeKind::FirstCommand, ExchangeKind::MacType,
                                            ExchangeKind::CountryCode};

} // namespace

ExchangeKind ClientExchanges::Next() const {
    if (m_count < ahead.size())
        return ahead.at(m_count);
    return (m_count - ahead.size()) % 2 == 0 ? ExchangeKind::Start : ExchangeKind::Stop;
}

LineNumber ClientExchanges::NextLine() const {
    return m_segment.firstLine + static_cast<LineNumber>((m_count - ahead.size()) / 2);
}

bool ClientExchanges::IsComplete() const {
    return m_count == ahead.size() + 2 * m_segment.lines;
}

std::string ClientExchanges::LastInWords() const {
    constexpr std::array<const char*, ahead.size() + 1> words{
        "the beginning of a segment", "the first command", "the question for the MAC type",
        "the question for the country code"};
    return words.at(std::min(m_count, ahead.size()));
}

} // namespace Bench
