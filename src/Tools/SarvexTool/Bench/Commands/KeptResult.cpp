#include "Tools/SarvexTool/Bench/Commands/KeptResult.h"

#include "Tools/SarvexTool/Bench/Commands/HistoryOptions.h"
#include "Tools/SarvexTool/Bench/Files/FileNames.h"
#include "Tools/SarvexTool/Bench/Files/KeptFiles.h"
#include "Tools/SarvexTool/Bench/Output/ShownTime.h"

#include <filesystem>
#include <system_error>
#include <utility>

namespace Bench {

NamedResult ReadKept(const std::string& run, const std::optional<std::string>& store,
                     TextPool& texts) {
    Store opened = OpenToRead(store);
    const KeptFacts facts = opened.Find(run);
    const std::string name = run + " (the run " + ShortHash(facts.hash) + " of " +
                             ShownMinute(facts.measuredAt) + " UTC)";
    // Read before the names are made: GCC 12 destroys a member that inner braces have made a second
    // time when a later one throws.
    Result result = ReadKeptResult(opened.FilesOf(facts.hash), name, texts);
    return {{name, std::nullopt}, std::move(result)};
}

bool IsPath(const std::string& name) {
    std::error_code ignored;
    return name == StandardStreamName || std::filesystem::exists(PathOf(name), ignored) ||
           name.find_first_of("/\\") != std::string::npos || name.ends_with(".csv");
}

} // namespace Bench
