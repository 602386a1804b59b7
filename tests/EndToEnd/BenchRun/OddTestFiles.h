#pragma once

#include <map>
#include <string>

namespace EndToEnd {

/// The examples and test files that the client reads in some odd way, by what is odd about them.
std::map<std::string, std::string> OddTestFiles();

} // namespace EndToEnd
