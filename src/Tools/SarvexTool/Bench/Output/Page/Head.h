#pragma once

#include "Tools/SarvexTool/Bench/Output/Page/Page.h"

#include <iosfwd>

namespace Bench {

/// Writes what can be read without scripts: the subject, the verdict in words, the counts and the
/// facts.
void WriteHead(const Page& page, std::ostream& out);

} // namespace Bench
