#include "Tools/SarvexTool/Bench/Output/Page/HistoryPage.h"

#include "Tools/SarvexTool/Bench/Output/Page/Embedded.h"
#include "Tools/SarvexTool/Bench/Output/Page/HistoryData.h"
#include "Tools/SarvexTool/Bench/Output/Page/Template.h"
#include "Tools/SarvexTool/Bench/Output/Phrases.h"
#include "Tools/SarvexTool/Bench/Output/TrendConclusion.h"

#include <cctype>
#include <ostream>

namespace Bench {

namespace {

/// "OUT OF LIMITS" as "Out of limits".
std::string AsTitle(std::string word) {
    for (std::size_t place = 1; place < word.size(); ++place)
        word[place] = static_cast<char>(std::tolower(static_cast<unsigned char>(word[place])));
    return word;
}

const char* KindOf(const Trend& trend) {
    if (trend.basis == TrendBasis::Nothing)
        return "none";
    return trend.IsFine() ? "pass" : "fail";
}

void WriteHead(const HistoryPage& page, std::ostream& out) {
    WriteHeading(page.kind, page.subject, out);
    const TrendConclusion conclusion = ConclusionOf(page.named.data, page.named.trend);
    WriteBanner(KindOf(page.named.trend), AsTitle(conclusion.word),
                conclusion.sentences.front() + ".", out);
    if (conclusion.sentences.size() > 1) {
        out << "<ul class=\"says\">\n";
        for (std::size_t place = 1; place < conclusion.sentences.size(); ++place)
            out << "<li>" << EscapeHtml(conclusion.sentences[place] + ".") << "</li>\n";
        out << "</ul>\n";
    }
    out << "<dl class=\"facts\">\n";
    for (const PageFact& fact : page.facts)
        WriteFact(fact.name, fact.value, out);
    out << "</dl>\n";
}

} // namespace

void WriteHistoryPage(const HistoryPage& page, std::ostream& out) {
    WriteContent({page.subject + " - " + page.kind, Embedded::historyBody, Embedded::historyScript,
                  [&page](std::ostream& head) { WriteHead(page, head); },
                  [&page](std::ostream& data) { WriteHistoryData(page, data); }},
                 out);
}

} // namespace Bench
