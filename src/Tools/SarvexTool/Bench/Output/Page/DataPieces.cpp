#include "Tools/SarvexTool/Bench/Output/Page/DataPieces.h"

#include "Tools/SarvexTool/Bench/Output/ShownText.h"

#include <nlohmann/json.hpp>

#include <ostream>

namespace Bench {

std::string Quoted(std::string_view text) {
    std::string quoted;
    for (const char character : nlohmann::json(MakeHarmless(text)).dump(-1, ' ', true)) {
        if (character == '<')
            quoted += "\\u003c";
        else
            quoted += character;
    }
    return quoted;
}

std::string DecimalOrNull(const std::optional<Decimal>& number) {
    return number ? "\"" + number->ToText() + "\"" : "null";
}

std::string TextPlaces::PlaceOf(const std::string& text) {
    const auto [found, isNew] = m_places.try_emplace(text, m_places.size());
    if (isNew)
        m_json += (m_json.empty() ? "" : ",\n") + Quoted(text);
    return std::to_string(found->second);
}

std::ostream& JsonLines::Next() {
    m_out << (m_isFirst ? "\n" : ",\n");
    m_isFirst = false;
    return m_out;
}

} // namespace Bench
