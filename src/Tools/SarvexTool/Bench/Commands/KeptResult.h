#pragma once

#include "Tools/SarvexTool/Bench/Files/ResultFile.h"

#include <optional>
#include <string>

namespace Bench {

/// A run to hold another one against, and what it is called.
struct NamedResult {
    ResultNames names;
    Result result;
};

/// The kept run that a baseline of that name is, or whose hash begins so. Its name tells when it
/// was measured. Throws NotKept, StoreError, BadInput and WrongUsage.
NamedResult ReadKept(const std::string& run, const std::optional<std::string>& store,
                     TextPool& texts);

/// Whether a name is meant as that of a file or a folder: there is one, or it has what only paths
/// have.
bool IsPath(const std::string& name);

} // namespace Bench
