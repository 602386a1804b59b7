#pragma once

#include <string>
#include <vector>

namespace Bench {

/// Throws WrongUsage when a standard stream is named twice, or an output is one of the inputs or
/// another output, by whatever name. To be called before anything is written.
void RequireDistinctFiles(const std::vector<std::string>& inputs,
                          const std::vector<std::string>& outputs);

} // namespace Bench
