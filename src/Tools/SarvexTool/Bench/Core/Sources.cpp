#include "Tools/SarvexTool/Bench/Core/Sources.h"

#include <algorithm>
#include <array>
#include <map>
#include <stdexcept>
#include <utility>

namespace Bench {

namespace {

/// In the order of the enumeration.
constexpr std::array<const char*, PlacePartCount> partNames{"bench", "device", "attempt"};

std::optional<std::string> TextOf(const RunPlace& place, PlacePart part) {
    switch (part) {
    case PlacePart::Bench:
        return place.bench;
    case PlacePart::Device:
        return place.device;
    case PlacePart::Attempt:
        break;
    }
    return place.attempt ? std::optional(std::to_string(*place.attempt)) : std::nullopt;
}

/// Groups are sorted by these.
std::pair<std::string, std::string> SortKey(const RunPlace& place, PlacePart part) {
    std::string text = TextOf(place, part).value_or("");
    return {CountingKey(text), std::move(text)};
}

/// The place of the source that a line is in; the number of sources for a line in none.
std::size_t IndexOf(const std::vector<Source>& sources, LineNumber line) {
    const auto found =
        std::partition_point(sources.begin(), sources.end(),
                             [line](const Source& source) { return source.lines.last < line; });
    return found != sources.end() && found->lines.Holds(line)
               ? static_cast<std::size_t>(found - sources.begin())
               : sources.size();
}

} // namespace

Sources::Sources(std::vector<Source> all) : m_all(std::move(all)) {
    LineNumber last = 0;
    for (const Source& source : m_all) {
        if (source.lines.first <= last || source.lines.last < source.lines.first)
            throw std::invalid_argument("the sources are not in the order of their lines");
        last = source.lines.last;
    }
}

const RunPlace* Sources::PlaceOf(LineNumber line) const {
    const std::size_t index = IndexOf(m_all, line);
    return index < m_all.size() ? &m_all[index].place : nullptr;
}

const char* NameOf(PlacePart part) {
    return partNames.at(static_cast<std::size_t>(part));
}

std::optional<PlacePart> PlacePartNamed(std::string_view name) {
    const auto* const found = std::find(partNames.begin(), partNames.end(), name);
    if (found == partNames.end())
        return std::nullopt;
    return static_cast<PlacePart>(found - partNames.begin());
}

bool AreTold(const Sources& sources, PlacePart part) {
    return std::any_of(sources.All().begin(), sources.All().end(), [part](const Source& source) {
        return TextOf(source.place, part).has_value();
    });
}

std::optional<PlacePart> ToldPart(const Sources& sources, std::optional<PlacePart> wanted) {
    if (wanted && AreTold(sources, *wanted))
        return wanted;
    for (std::size_t index = 0; index < PlacePartCount; ++index) {
        const auto part = static_cast<PlacePart>(index);
        if (AreTold(sources, part))
            return part;
    }
    return std::nullopt;
}

std::string CountingKey(std::string_view name) {
    constexpr std::string_view digits = "0123456789";
    std::string key;
    while (!name.empty()) {
        const std::string_view text = name.substr(0, name.find_first_of(digits));
        name.remove_prefix(text.size());
        const std::string_view number = name.substr(0, name.find_first_not_of(digits));
        name.remove_prefix(number.size());
        key += text;
        if (number.empty())
            break;
        // A longer number is a larger one; the longest that there are differ in their digits alone.
        const std::string_view figures =
            number.substr(std::min(number.find_first_not_of('0'), number.size() - 1));
        key += '0';
        key += static_cast<char>(std::min<std::size_t>(figures.size(), 127));
        key += figures;
    }
    return key;
}

LineGroups::LineGroups(const Sources& sources, PlacePart part)
    : m_sources(sources), m_names{std::nullopt} {
    std::map<std::pair<std::string, std::string>, std::size_t> groups;
    for (const Source& source : sources.All()) {
        if (TextOf(source.place, part))
            groups[SortKey(source.place, part)] = 0;
    }
    for (auto& [key, group] : groups) {
        group = m_names.size();
        m_names.emplace_back(key.second);
    }
    for (const Source& source : sources.All())
        m_groups.push_back(TextOf(source.place, part) ? groups.at(SortKey(source.place, part)) : 0);
}

std::size_t LineGroups::GroupOf(LineNumber line) const {
    const std::size_t index = IndexOf(m_sources.All(), line);
    return index < m_groups.size() ? m_groups[index] : 0;
}

} // namespace Bench
