#include "Tools/SarvexTool/Bench/Output/Junit.h"

#include "Tools/SarvexTool/Bench/Core/SameMeasurements.h"
#include "Tools/SarvexTool/Bench/Output/Phrases.h"
#include "Tools/SarvexTool/Bench/Output/ShownText.h"

#include <algorithm>
#include <array>
#include <functional>
#include <map>
#include <utility>
#include <vector>

namespace Bench {

namespace {

/// What names a suite, and is not repeated in the names of its cases.
constexpr std::array<Setting, 2> suiteSettings{Setting::Band, Setting::Bandwidth};

constexpr std::array<const char*, 5> kindNames{
    "changed", "measured in old only", "measured in new only", "in old only", "in new only"};

struct Failure {
    std::string type;
    std::string message;
};

/// A measurement of a run.
struct Case {
    const RunResult* pRun;
    std::uint32_t measurement;
    /// Which one of the same measurement it is, from 1.
    std::uint32_t repeat;
    bool hasFailed;
};

struct Suite {
    std::string name;
    std::vector<std::uint32_t> cases;
    std::size_t failures = 0;
};

std::string SuiteName(const Settings& settings) {
    std::string name;
    for (const Setting setting : suiteSettings) {
        const std::string* const value = settings[setting];
        name.append(name.empty() ? "" : ", ").append(NameOf(setting)).append(" ");
        name.append(value == nullptr ? "unknown" : *value);
    }
    return name;
}

std::string CaseName(const Case& shown) {
    const Measurement& measurement = shown.pRun->measurements[shown.measurement];
    std::string name = PhraseOf(shown.pRun->SettingsOf(measurement), suiteSettings);
    name.append(name.empty() ? "chain " : ", chain ").append(NameOf(measurement.chain));
    return shown.repeat == 1 ? name : name + " (" + std::to_string(shown.repeat) + ")";
}

std::vector<Suite> SuitesOf(const std::vector<Case>& cases) {
    std::vector<Suite> suites;
    std::map<std::pair<const std::string*, const std::string*>, std::size_t> places;
    for (std::uint32_t index = 0; index < cases.size(); ++index) {
        const Case& shown = cases[index];
        const Settings& settings =
            shown.pRun->SettingsOf(shown.pRun->measurements[shown.measurement]);
        const std::pair key(settings[Setting::Band], settings[Setting::Bandwidth]);
        const auto [entry, isNew] = places.try_emplace(key, suites.size());
        if (isNew)
            suites.emplace_back().name = SuiteName(settings);
        Suite& suite = suites[entry->second];
        suite.cases.push_back(index);
        suite.failures += std::size_t{shown.hasFailed};
    }
    return suites;
}

std::string Attribute(const char* name, std::string_view value) {
    return std::string(" ") + name + "=\"" + XmlText(value) + "\"";
}

std::string CountAttributes(std::size_t tests, std::size_t failures) {
    return Attribute("tests", std::to_string(tests)) +
           Attribute("failures", std::to_string(failures)) + Attribute("errors", "0");
}

/// Readers cut a class name at its points, which part the names of packages.
std::string ClassName(std::string suiteName) {
    std::replace(suiteName.begin(), suiteName.end(), '.', '_');
    return suiteName;
}

/// A report of cases. What a failed one says is asked for by its number, when it is written.
class Report {
public:
    Report(std::vector<Case> cases, std::function<Failure(std::size_t)> failureOf)
        : m_cases(std::move(cases)), m_failureOf(std::move(failureOf)) {}

    /// A run that ended early is one more case, which failed.
    void Write(std::ostream& stream, const char* name,
               const std::optional<EarlyEnd>& earlyEnd) const {
        const auto failures = static_cast<std::size_t>(std::count_if(
            m_cases.begin(), m_cases.end(), [](const Case& shown) { return shown.hasFailed; }));
        const std::size_t endFailures{earlyEnd.has_value()};
        stream << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuites"
               << Attribute("name", name)
               << CountAttributes(m_cases.size() + endFailures, failures + endFailures) << ">\n";
        for (const Suite& suite : SuitesOf(m_cases))
            WriteSuite(stream, suite);
        if (earlyEnd)
            WriteEarlyEnd(stream, *earlyEnd);
        stream << "</testsuites>\n";
    }

private:
    static void WriteEarlyEnd(std::ostream& stream, const EarlyEnd& earlyEnd) {
        stream << "  <testsuite" << Attribute("name", "Run") << CountAttributes(1, 1)
               << Attribute("skipped", "0") << ">\n    <testcase"
               << Attribute("name", "all lines were run") << Attribute("classname", "Run")
               << ">\n      <failure" << Attribute("type", "ended early")
               << Attribute("message", earlyEnd.ToText())
               << "/>\n    </testcase>\n  </testsuite>\n";
    }

    void WriteSuite(std::ostream& stream, const Suite& suite) const {
        stream << "  <testsuite" << Attribute("name", suite.name)
               << CountAttributes(suite.cases.size(), suite.failures) << Attribute("skipped", "0")
               << ">\n";
        const std::string className = Attribute("classname", ClassName(suite.name));
        for (const std::uint32_t index : suite.cases)
            WriteCase(stream, index, className);
        stream << "  </testsuite>\n";
    }

    void WriteCase(std::ostream& stream, std::uint32_t index, const std::string& className) const {
        stream << "    <testcase" << Attribute("name", CaseName(m_cases[index])) << className;
        if (!m_cases[index].hasFailed) {
            stream << "/>\n";
            return;
        }
        const Failure failure = m_failureOf(index);
        stream << ">\n      <failure" << Attribute("type", failure.type)
               << Attribute("message", failure.message) << "/>\n    </testcase>\n";
    }

    std::vector<Case> m_cases;
    std::function<Failure(std::size_t)> m_failureOf;
};

/// With the bench where it is told: "line 5, bench bench2".
std::string AtLine(const RunResult& run, std::uint32_t measurement) {
    const Measurement& shown = run.measurements[measurement];
    const std::string line = "line " + std::to_string(run.LineOf(shown));
    const RunPlace* const place = run.PlaceOf(shown);
    return place != nullptr && place->bench ? line + ", bench " + *place->bench : line;
}

/// Where a difference is: the lines in both files.
std::string Places(const ComparedRuns& compared, const Difference& difference) {
    std::string text;
    if (difference.oldMeasurement)
        text = "old " + AtLine(compared.oldResult.run, *difference.oldMeasurement);
    if (difference.newMeasurement)
        text += (text.empty() ? "" : ", ") + std::string("new ") +
                AtLine(compared.newResult.run, *difference.newMeasurement);
    return text;
}

} // namespace

void WriteJunit(std::ostream& stream, const JudgedRun& judged) {
    const RunResult& run = judged.result.run;
    const std::vector<Judgement>& judgements = judged.judgements.all;
    const std::vector<std::uint32_t> repeats = RepeatNumbers(run);
    std::vector<Case> cases;
    cases.reserve(judgements.size());
    for (const Judgement& judgement : judgements)
        cases.push_back({&run, judgement.measurement, repeats[judgement.measurement],
                         judgement.verdict != Verdict::Pass});
    const Report report(std::move(cases), [&](std::size_t index) {
        const Judgement& judgement = judgements[index];
        return Failure{NameOf(judgement.verdict),
                       PhraseOf(run, judgement) + " (" + AtLine(run, judgement.measurement) + ")"};
    });
    report.Write(stream, "judge", run.earlyEnd);
}

void WriteJunit(std::ostream& stream, const ComparedRuns& compared) {
    const RunResult& oldRun = compared.oldResult.run;
    const RunResult& newRun = compared.newResult.run;
    std::vector<const Difference*> found(oldRun.measurements.size());
    std::vector<std::uint32_t> repeats = RepeatNumbers(oldRun);
    for (const Difference& difference : compared.differences.all) {
        if (difference.oldMeasurement)
            found[*difference.oldMeasurement] = &difference;
    }
    std::vector<Case> cases;
    for (std::uint32_t index = 0; index < found.size(); ++index)
        cases.push_back({&oldRun, index, repeats[index], found[index] != nullptr});
    repeats = RepeatNumbers(newRun);
    for (const Difference& difference : compared.differences.all) {
        if (difference.kind != Difference::Kind::InNewOnly)
            continue;
        cases.push_back(
            {&newRun, *difference.newMeasurement, repeats[*difference.newMeasurement], true});
        found.push_back(&difference);
    }
    const Report report(std::move(cases), [&](std::size_t index) {
        const Difference& difference = *found[index];
        return Failure{kindNames.at(static_cast<std::size_t>(difference.kind)),
                       PhraseOf(oldRun, newRun, difference) + " (" + Places(compared, difference) +
                           ")"};
    });
    report.Write(stream, "compare", newRun.earlyEnd ? newRun.earlyEnd : oldRun.earlyEnd);
}

std::string XmlText(std::string_view text) {
    const std::string harmless = MakeHarmless(text);
    std::string escaped;
    escaped.reserve(harmless.size());
    for (const char character : harmless) {
        switch (character) {
        case '&':
            escaped += "&amp;";
            break;
        case '<':
            escaped += "&lt;";
            break;
        case '>':
            escaped += "&gt;";
            break;
        case '"':
            escaped += "&quot;";
            break;
        default:
            escaped += character;
        }
    }
    return escaped;
}

} // namespace Bench
