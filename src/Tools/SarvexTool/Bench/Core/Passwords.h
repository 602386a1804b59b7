#pragma once

#include <string>

namespace Bench {

/// A message without the passwords of the URLs and of the settings "password=" in it: somebody may
/// have written a store's name where something else belongs.
std::string WithoutPasswords(std::string text);

} // namespace Bench
