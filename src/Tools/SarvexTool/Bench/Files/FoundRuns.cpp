#include "Tools/SarvexTool/Bench/Files/FoundRuns.h"

#include "Tools/SarvexTool/Bench/Files/BadFile.h"
#include "Tools/SarvexTool/Bench/Files/FileNames.h"
#include "Tools/SarvexTool/Bench/Files/Journal.h"
#include "Tools/SarvexTool/Bench/Files/RunFiles.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <system_error>

namespace Bench {

namespace {

namespace fs = std::filesystem;

constexpr ProblemKind unreadableKind{Severity::Error, "runs whose facts cannot be read"};

std::string NameSeenFrom(const std::string& folder, const fs::path& path) {
    const std::u8string name = path.lexically_relative(PathOf(folder)).generic_u8string();
    return {name.begin(), name.end()};
}

/// The folders with a run.json, which need not be one that can be read.
std::vector<std::string> FoldersWithFacts(const std::string& folder) {
    std::vector<std::string> names;
    std::error_code error;
    const std::string runs = folder + "runs";
    for (fs::recursive_directory_iterator entry(PathOf(runs), error), end; !error && entry != end;
         entry.increment(error)) {
        if (entry->path().filename() == "run.json" &&
            fs::is_regular_file(entry->symlink_status(error)))
            names.push_back(NameSeenFrom(folder, entry->path().parent_path()));
    }
    if (error && error != std::errc::no_such_file_or_directory)
        throw BadInput(runs, "cannot be searched (" + error.message() + ")");
    std::sort(names.begin(), names.end());
    return names;
}

/// Of a name from any system.
std::string LastPartOf(const std::string& name) {
    return name.substr(name.find_last_of("/\\") + 1);
}

/// The whole entries of the journal up to one that is damaged; 0 without a journal. An attempt that
/// is of no use any more does not keep the others from being merged.
std::size_t CountFinishedLines(const std::string& runFolder) {
    const std::string name = RunFiles(runFolder).journal;
    std::ifstream file(PathOf(name), std::ios::binary);
    if (!file)
        return 0;
    JournalReader reader(file, name);
    std::size_t count = 0;
    try {
        for (JournalEntry entry; reader.Read(entry);)
            ++count;
    } catch (const BadInput&) {
        return count;
    }
    return count;
}

} // namespace

std::vector<RunFolder> FindRuns(const std::string& folder, ProblemList& problems) {
    std::vector<RunFolder> runs;
    for (const std::string& name : FoldersWithFacts(folder)) {
        try {
            runs.push_back({name, ReadRunFacts(RunFiles(folder + name).facts)});
        } catch (const BadInput& bad) {
            problems.Add(unreadableKind, 0, 0,
                         "the facts of the run " + name +
                             " cannot be used: " + bad.Problems().front().text +
                             "; move the run away from those of the chunks");
        }
    }
    return runs;
}

FoundRun FoundRunOf(const std::string& folder, const RunFolder& run) {
    const RunFacts& facts = run.facts;
    const bool isComplete = facts.outcome == "complete" && !facts.isMerged;
    return {run.name, LastPartOf(facts.testFile.name), facts.testFile.sha256, isComplete,
            isComplete ? facts.linesDone : CountFinishedLines(folder + run.name)};
}

} // namespace Bench
