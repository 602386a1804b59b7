#pragma once

#include "Tools/SarvexTool/Bench/Core/LineRange.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Bench {

/// Where a run has measured, and which attempt it is, as far as somebody has told it. Any texts.
struct RunPlace {
    std::optional<std::string> bench;
    std::optional<std::string> device;
    /// Counts from 1.
    std::optional<std::uint32_t> attempt;

    bool operator==(const RunPlace&) const = default;
};

/// Some lines of a run that were measured in one place.
struct Source {
    LineRange lines;
    RunPlace place;

    bool operator==(const Source&) const = default;
};

/// Where the lines of a run were measured.
class Sources {
public:
    Sources() = default;
    /// In the order of their lines, of which none is in two of them; throws std::invalid_argument
    /// for others.
    explicit Sources(std::vector<Source> all);

    const std::vector<Source>& All() const { return m_all; }

    /// Null for a line of which nothing tells where it was measured.
    const RunPlace* PlaceOf(LineNumber line) const;

    bool operator==(const Sources&) const = default;

private:
    std::vector<Source> m_all;
};

/// What measurements are grouped by.
enum class PlacePart : std::uint8_t { Bench, Device, Attempt };

inline constexpr std::size_t PlacePartCount = 3;

/// "bench", "device" or "attempt".
const char* NameOf(PlacePart part);

/// The part of that name; nothing for any other text.
std::optional<PlacePart> PlacePartNamed(std::string_view name);

/// Whether some source tells that part of its place.
bool AreTold(const Sources& sources, PlacePart part);

/// The wanted part where some source tells it, else the first one that some source tells; nothing
/// where they tell none.
std::optional<PlacePart> ToldPart(const Sources& sources, std::optional<PlacePart> wanted);

/// A text whose byte order is the order in which people count the names: "bench9" before "bench10".
/// Names that differ in zeros before a number have the same one.
std::string CountingKey(std::string_view name);

/// The lines of a run in groups that have the same bench, device or attempt.
class LineGroups {
public:
    LineGroups(const Sources& sources, PlacePart part);

    /// In the order of their CountingKey. The first one is of the lines of which nothing tells it,
    /// and there may be none of these.
    const std::vector<std::optional<std::string>>& Names() const { return m_names; }

    /// The place in Names of the group that a line belongs to.
    std::size_t GroupOf(LineNumber line) const;

private:
    const Sources& m_sources;
    std::vector<std::optional<std::string>> m_names;
    /// The group of each source.
    std::vector<std::size_t> m_groups;
};

} // namespace Bench
