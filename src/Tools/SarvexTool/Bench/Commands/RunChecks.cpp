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
#include <optional>

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

/// What no --force passes.
std::optional<Problem> Obstacle(const std::string& testFile, std::string_view bytes) {
    const std::size_t nul = bytes.find('\0');
    if (nul == std::string_view::npos)
        return BypassIn(testFile);
    const auto before = bytes.begin() + static_cast<std::ptrdiff_t>(nul);
    return Problem{Severity::Error,
                   static_cast<LineNumber>(1 + std::count(bytes.begin(), before, '\n')), 0,
                   "a NUL byte cannot be sent; save the file as plain text"};
}

} // namespace

bool IsFitToRun(const std::string& testFile, bool force, Surroundings& surroundings) {
    const std::string bytes = ReadInput(testFile, surroundings.in);
    TextPool pool;
    // The clients are started anew for each segment: no number of lines is too large.
    const CheckedTestFile file =
        CheckTestFile(bytes, pool, std::numeric_limits<std::uint64_t>::max());
    PrintProblems(surroundings.err, testFile, file.problems.InOrder());
    if (const std::optional<Problem> obstacle = Obstacle(testFile, bytes)) {
        PrintProblems(surroundings.err, testFile, std::vector{*obstacle});
        return false;
    }
    if (file.problems.Count(Severity::Error) == 0 || force)
        return true;
    surroundings.err.stream
        << "Nothing was run: correct the file (SarvexToolBench check tells what "
           "--write can do), or go on all the same with --force.\n";
    return false;
}

void RequireRelayed(const std::vector<std::string>& firstCommand) {
    const std::optional<std::string> bypass = BypassAmong(AsSent(firstCommand));
    if (bypass)
        throw WrongUsage("the argument " + *bypass + pastTheSupervision);
}

} // namespace Bench
