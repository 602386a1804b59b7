#pragma once

#include "Tools/SarvexTool/Bench/Core/Kept.h"
#include "Tools/SarvexTool/Bench/Output/Page/Page.h"
#include "Tools/SarvexTool/Bench/Output/TrendPhrases.h"

#include <iosfwd>
#include <string>
#include <vector>

namespace Bench {

/// What a page of kept runs shows. It refers to the values and keeps none of them.
struct HistoryPage {
    /// What kind of page it is, in plain words: the first line of its head.
    std::string kind;
    /// The page's heading and title. Any text.
    std::string subject;
    std::vector<PageFact> facts;
    const NamedTrend& named;
    /// What an overview lists; null for the page of a trend alone.
    const std::vector<KeptFacts>* runs = nullptr;
};

/// Writes one HTML file that needs nothing else, as WritePage does.
void WriteHistoryPage(const HistoryPage& page, std::ostream& out);

} // namespace Bench
