#pragma once

#include <span>
#include <string_view>

namespace Bench {

/// The known name that a wrong one is most likely meant to be; empty when none is near. Case, and
/// what is neither letter nor digit, do not count.
std::string_view NearestName(std::string_view wrong, std::span<const char* const> known);

} // namespace Bench
