#pragma once

#include <string>
#include <string_view>

namespace Bench {

/// A text of any bytes as it can be shown on a terminal: control characters, bytes that are no
/// UTF-8, and characters that reorder or hide what is beside them are written as \t, \n, \r, \xHH
/// or \u{HHHH}. All text from files, arguments and daemons passes through here on its
/// way into a message.
std::string MakeHarmless(std::string_view text);

} // namespace Bench
