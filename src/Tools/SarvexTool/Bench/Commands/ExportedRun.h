#pragma once

#include "Tools/SarvexTool/Bench/Core/Kept.h"

#include <ostream>
#include <string>

namespace Bench {

/// Tells the command that keeps a run in another store, after its files were written into a folder:
/// with what is told of it here and its files do not tell. Throws BadInput for files that cannot be
/// kept.
void PrintHowToKeep(std::ostream& stream, const KeptFacts& run, const std::string& folder);

} // namespace Bench
