#include "Tools/SarvexTool/Bench/Core/Kept.h"

#include <algorithm>
#include <array>

namespace Bench {

namespace {

constexpr std::array<const char*, 3> names{"pass", "fail", "not judged"};

} // namespace

const char* NameOf(KeptVerdict verdict) {
    return names.at(static_cast<std::size_t>(verdict));
}

std::optional<KeptVerdict> KeptVerdictNamed(std::string_view name) {
    const auto found = std::find(names.begin(), names.end(), name);
    if (found == names.end())
        return std::nullopt;
    return static_cast<KeptVerdict>(found - names.begin());
}

std::string ShortHash(const std::string& hash) {
    constexpr std::size_t shownDigits = 8;
    return hash.substr(0, shownDigits);
}

} // namespace Bench
