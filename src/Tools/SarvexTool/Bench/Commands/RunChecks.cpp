#include "Tools/SarvexTool/Bench/Commands/RunChecks.h"

#include "Tools/SarvexTool/Bench/Daemon/Daemon.h"
#include "Tools/SarvexTool/Bench/Files/Input.h"
#include "Tools/SarvexTool/Bench/Files/TestFileCheck.h"
#include "Tools/SarvexTool/Bench/Files/TestLines.h"
#include "Tools/SarvexTool/Bench/Output/Problems.h"
#include "Tools/SarvexTool/Bench/Output/ShownText.h"
#include "Tools/SarvexTool/Bench/Supervision/DeviceSettings.h"

#include <algorithm>
#include <limits>

namespace Bench {

namespace {

constexpr const char* pastTheSupervision =
    " would lead the client past the supervision; use --daemon to name another daemon";

/// The first line with a cell that would lead the client past the relay.
std::optional<Problem> BypassIn(const std::string& testFile) {
    TestLines lines(testFile);
    TestLine line;
    while (lines.Read(line)) {
        std::vector<std::string> cells;
        for (const std::optional<std::string>& cell : line.own) {
            if (cell)
                cells.push_back(*cell);
        }
        if (const std::optional<std::string> bypass = BypassAmong(cells))
            return Problem{Severity::Error, line.number, 0,
                           "a cell " + *bypass + pastTheSupervision};
    }
    return std::nullopt;
}

/// Whether a cell may do so. Where the check finds no error no cell begins with a hyphen, so that
/// only the value of a typed literal could.
bool MayBypass(const std::string& cell) {
    return cell.starts_with('-') || IsTypedLiteral(cell);
}

/// What no --force passes.
std::optional<Problem> Obstacle(const std::string& testFile, std::string_view bytes,
                                const CheckedTestFile& file, const TextPool& cells) {
    const std::size_t nul = bytes.find('\0');
    if (nul != std::string_view::npos) {
        const auto before = bytes.begin() + static_cast<std::ptrdiff_t>(nul);
        return Problem{Severity::Error,
                       static_cast<LineNumber>(1 + std::count(bytes.begin(), before, '\n')), 0,
                       "a NUL byte cannot be sent; save the file as plain text"};
    }
    // A long file takes long to be read once more.
    const bool isWithout = file.problems.Count(Severity::Error) == 0 &&
                           std::none_of(cells.begin(), cells.end(), MayBypass);
    return isWithout ? std::nullopt : BypassIn(testFile);
}

/// What the check has found, which is printed.
struct Findings {
    std::size_t lines = 0;
    bool hasObstacle = false;
    bool hasErrors = false;
};

Findings CheckAndPrint(const std::string& testFile, std::string_view bytes, TextPool& pool,
                       const Surroundings& surroundings) {
    // The clients are started anew for each segment: no number of lines is too large.
    const CheckedTestFile file =
        CheckTestFile(bytes, pool, std::numeric_limits<std::uint64_t>::max());
    PrintProblems(surroundings.err, testFile, file.problems.InOrder());
    const std::optional<Problem> obstacle = Obstacle(testFile, bytes, file, pool);
    if (obstacle)
        PrintProblems(surroundings.err, testFile, std::vector{*obstacle});
    return {file.plan.configurations, obstacle.has_value(),
            file.problems.Count(Severity::Error) > 0};
}

} // namespace

bool IsFitToRun(const std::string& testFile, bool force, Surroundings& surroundings) {
    const std::string bytes = ReadInput(testFile, surroundings.in);
    TextPool pool;
    const Findings findings = CheckAndPrint(testFile, bytes, pool, surroundings);
    if (findings.hasObstacle)
        return false;
    if (!findings.hasErrors || force)
        return true;
    surroundings.err.stream
        << "Nothing was run: correct the file (SarvexToolBench check tells what "
           "--write can do), or go on all the same with --force.\n";
    return false;
}

std::optional<LineNumber> LinesFitToSplit(const std::string& testFile, std::string_view bytes,
                                          TextPool& pool, Surroundings& surroundings) {
    const Findings findings = CheckAndPrint(testFile, bytes, pool, surroundings);
    if (!findings.hasObstacle && !findings.hasErrors)
        return static_cast<LineNumber>(findings.lines);
    surroundings.err.stream << "Nothing was split: correct the file (SarvexToolBench check tells "
                               "what --write can do).\n";
    return std::nullopt;
}

void RequireRelayed(const std::vector<std::string>& firstCommand) {
    const std::optional<std::string> bypass = BypassAmong(AsSent(firstCommand));
    if (bypass)
        throw WrongUsage("the argument " + *bypass + pastTheSupervision);
}

} // namespace Bench
