#pragma once

#include "Tools/SarvexTool/Bench/Core/Differences.h"
#include "Tools/SarvexTool/Bench/Core/Verdicts.h"

#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

namespace Bench {

/// Something about a run that the head of its page tells: what it is, and its value. Any text.
struct PageFact {
    std::string name;
    std::string value;
};

/// Another run that a page holds its run against.
struct PageBaseline {
    const RunResult& run;
    /// The page's run is the new one.
    const Differences& differences;
    Decimal tolerance;
};

/// What a page shows. It refers to the values and keeps none of them.
struct Page {
    /// What kind of page it is, in plain words: the first line of its head.
    std::string kind;
    /// The name of what was measured: the page's heading and title. Any text.
    std::string subject;
    std::vector<PageFact> facts;
    const RunResult& run;
    /// Null when there are no limits.
    const Judgements* judgements = nullptr;
    /// Null when there is no other run.
    const PageBaseline* baseline = nullptr;
    /// What the table of the places of measurement is by; without it there is none.
    std::optional<PlacePart> groupBy = std::nullopt;
};

/// Writes one HTML file that needs nothing else: style, scripts and data are in it, and it asks the
/// network for nothing. It is the same for the same values. Texts of the run appear as text,
/// whatever they hold, with control and direction characters made visible.
void WritePage(const Page& page, std::ostream& out);

} // namespace Bench
