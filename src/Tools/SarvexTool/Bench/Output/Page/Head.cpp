#include "Tools/SarvexTool/Bench/Output/Page/Head.h"

#include "Tools/SarvexTool/Bench/Output/Page/Template.h"
#include "Tools/SarvexTool/Bench/Output/Phrases.h"

#include <array>
#include <ostream>

namespace Bench {

namespace {

/// The whole page's verdict: its class in the style sheet, and what it says.
struct Banner {
    const char* kind;
    const char* word;
    std::string sentence;
};

std::string Measurements(std::size_t count) {
    return Counted(count, "measurement");
}

std::size_t CountMeasured(const RunResult& run) {
    std::size_t count = 0;
    for (const Measurement& measurement : run.measurements)
        count += std::size_t{measurement.power.has_value()};
    return count;
}

/// "3 too low, 1 not measured".
std::string NamedFailures(const Judgements& judgements) {
    std::string text;
    for (std::size_t index = 0; index < VerdictCount; ++index) {
        const auto verdict = static_cast<Verdict>(index);
        if (verdict == Verdict::Pass || judgements.Count(verdict) == 0)
            continue;
        text += (text.empty() ? "" : ", ") + std::to_string(judgements.Count(verdict)) + " " +
                NameOf(verdict);
    }
    return text;
}

Banner BannerOfJudgements(const Judgements& judgements) {
    const std::size_t total = judgements.all.size();
    if (total == 0)
        return {"none", "Nothing to judge", "There is no measurement."};
    if (judgements.HaveAllPassed())
        return {"pass", "Passed",
                total == 1 ? "The one measurement is within its limits."
                           : "All " + Measurements(total) + " are within their limits."};
    const std::size_t failed = total - judgements.Count(Verdict::Pass);
    if (failed == 0)
        return {"fail", "Not passed", "Of the lines that were run, all are within their limits."};
    return {"fail", "Not passed",
            std::to_string(failed) + " of " + Measurements(total) +
                " did not pass: " + NamedFailures(judgements) + "."};
}

/// "The run is not complete: 5 of 12 lines were run."
std::string SentenceOf(const EarlyEnd& earlyEnd) {
    std::string text = earlyEnd.ToText() + ".";
    text.front() = 'T';
    return text;
}

Banner BannerOfBaseline(const PageBaseline& baseline) {
    const std::size_t count = baseline.differences.pairs;
    const std::string pairs = Measurements(count) + (count == 1 ? " is" : " are") + " in both runs";
    const std::string tolerance = baseline.tolerance.ToText() + " dB";
    if (baseline.differences.AreAlike())
        return {"pass", "Alike", pairs + ", and none differs by more than " + tolerance + "."};
    if (baseline.differences.all.empty())
        return {"fail", "Not complete",
                "Of the lines that were run, none differs by more than " + tolerance + "; " +
                    pairs + "."};
    return {"fail", "Different",
            Counted(baseline.differences.all.size(), "difference") +
                ": powers that changed by more than " + tolerance + ", or are in one run only; " +
                pairs + "."};
}

Banner BannerOf(const Page& page) {
    if (page.judgements != nullptr)
        return BannerOfJudgements(*page.judgements);
    if (page.baseline != nullptr)
        return BannerOfBaseline(*page.baseline);
    return {"none", "Not judged",
            "No limits were given; " + std::to_string(CountMeasured(page.run)) + " of " +
                Measurements(page.run.measurements.size()) + " have a power."};
}

/// One of the counts. It is a link, which shows just these in the table; the name with hyphens is a
/// class of the style sheet.
void WriteCount(std::size_t count, const std::string& name, std::ostream& out) {
    std::string kind = name;
    for (char& letter : kind)
        letter = letter == ' ' ? '-' : letter;
    out << "<li" << (count == 0 ? " class=\"zero\"" : "")
        << "><a href=\"#measurements\" data-verdict=\"" << name << "\"><b class=\"is-" << kind
        << "\">" << count << "</b> " << (name == "all" ? "measurements" : name) << "</a></li>\n";
}

void WriteCounts(const Page& page, std::ostream& out) {
    out << "<ul class=\"counts\" aria-label=\"Counts\">\n";
    const std::size_t total = page.run.measurements.size();
    WriteCount(total, "all", out);
    if (page.judgements != nullptr) {
        for (std::size_t index = 0; index < VerdictCount; ++index)
            WriteCount(page.judgements->counts.at(index), NameOf(static_cast<Verdict>(index)), out);
    } else {
        WriteCount(CountMeasured(page.run), "measured", out);
        WriteCount(total - CountMeasured(page.run), "not measured", out);
    }
    out << "</ul>\n";
}

void WriteFacts(const Page& page, std::ostream& out) {
    out << "<dl class=\"facts\">\n";
    for (const PageFact& fact : page.facts)
        WriteFact(fact.name, fact.value, out);
    WriteFact("Configurations", std::to_string(page.run.configurations.size()), out);
    if (page.run.unexpectedPowers > 0)
        WriteFact("Powers of chains that were not asked for, not counted",
                  std::to_string(page.run.unexpectedPowers), out);
    out << "</dl>\n";
}

} // namespace

void WriteHead(const Page& page, std::ostream& out) {
    WriteHeading(page.kind, page.subject, out);
    Banner banner = BannerOf(page);
    if (page.run.earlyEnd)
        banner.sentence = SentenceOf(*page.run.earlyEnd) + " " + banner.sentence;
    WriteBanner(banner.kind, banner.word, banner.sentence, out);
    WriteCounts(page, out);
    WriteFacts(page, out);
}

} // namespace Bench
