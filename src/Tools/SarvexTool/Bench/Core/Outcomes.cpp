#include "Tools/SarvexTool/Bench/Core/Outcomes.h"

#include <algorithm>
#include <array>

namespace Bench {

namespace {

/// In the order of the enumeration.
constexpr std::array<const char*, 8> names{
    "measured", "refused",         "uncalibrated",        "chain not active",
    "time-out", "connection lost", "other configuration", "not run"};

} // namespace

const char* NameOf(Outcome outcome) {
    return names.at(static_cast<std::size_t>(outcome));
}

std::optional<Outcome> OutcomeNamed(std::string_view name) {
    const auto* const found = std::find(names.begin(), names.end(), name);
    if (found == names.end())
        return std::nullopt;
    return static_cast<Outcome>(found - names.begin());
}

} // namespace Bench
