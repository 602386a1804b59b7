// Property: whatever a table of limits holds, it is read, or refused with a place and a text for
// each problem. In a table that is read no minimum is above its maximum, and the limit that is
// found for any measurement is the first of all that fit it.
//
// Input: a group with the table, then one with values of settings, one record each.

#include "Tools/SarvexTool/Bench/Files/LimitsFile.h"
#include "fuzz/Support/Check.h"
#include "fuzz/Support/Input.h"

#include <algorithm>

namespace {

using namespace Bench;

LineNumber FindPlainly(const std::vector<Limit>& lines, const Settings& settings, Chain chain,
                       std::vector<bool>& hasFitted) {
    LineNumber first = 0;
    for (std::size_t index = lines.size(); index-- > 0;) {
        if (!lines[index].Fits(settings, chain))
            continue;
        hasFitted[index] = true;
        first = lines[index].line;
    }
    return first;
}

void CheckSearch(Limits limits, TextPool& texts, const std::vector<std::string>& values) {
    LimitTable table(std::move(limits));
    const std::vector<Limit>& lines = table.Lines();
    std::vector<bool> hasFitted(lines.size());
    for (std::size_t start = 0; start < values.size(); ++start) {
        Settings settings;
        std::size_t next = start;
        for (const std::string*& setting : settings) {
            const std::string& value = values[next++ % values.size()];
            setting = value.empty() ? nullptr : texts.Keep(value);
        }
        const auto chain = static_cast<Chain>(start % 3);
        const Limit* const found = table.Find(settings, chain);
        CheckEqual(found == nullptr ? 0 : found->line,
                   FindPlainly(lines, settings, chain, hasFitted),
                   "the limit that is found is the first that fits");
    }
    CheckEqual(table.NeverFitting().size(),
               static_cast<std::size_t>(std::count(hasFitted.begin(), hasFitted.end(), false)),
               "a limit that fitted nothing is told");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Parts groups(ToText(data, size), GroupSeparator);
    TextPool texts;
    try {
        Limits limits = ParseLimits(groups[0], "limits.csv", texts);
        Check(!limits.lines.empty(), "a table that is read has a line");
        for (const Limit& limit : limits.lines)
            Check(!limit.minimum || !limit.maximum || *limit.minimum <= *limit.maximum,
                  "no minimum is above its maximum");
        CheckSearch(std::move(limits), texts, Split(groups[1], RecordSeparator));
    } catch (const BadInput& bad) {
        Check(std::all_of(bad.Problems().begin(), bad.Problems().end(),
                          [](const Problem& problem) {
                              return problem.severity == Severity::Error && !problem.text.empty();
                          }) &&
                  !bad.Problems().empty(),
              "a table that is refused has errors, and nothing else");
    }
    return 0;
}
