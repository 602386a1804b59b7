#pragma once

#include "Tools/SarvexTool/Bench/Output/Page/Page.h"

#include <string_view>

namespace Bench {

/// A text of any bytes as the text of an element or of a quoted attribute.
std::string EscapeHtml(std::string_view text);

/// Writes what can be read without scripts: the subject, the verdict in words, the counts and the
/// facts.
void WriteHead(const Page& page, std::ostream& out);

} // namespace Bench
