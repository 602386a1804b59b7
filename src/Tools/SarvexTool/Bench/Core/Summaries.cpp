#include "Tools/SarvexTool/Bench/Core/Summaries.h"

#include <algorithm>
#include <unordered_map>
#include <utility>

namespace Bench {

namespace {

void Count(VerdictCounts& counts, const Judgements& judgements, std::uint32_t place) {
    const Judgement& judgement = judgements.all[place];
    ++counts.counts[static_cast<std::size_t>(judgement.verdict)];
    if (judgement.margin &&
        (!counts.worst || judgement.margin < judgements.all[*counts.worst].margin))
        counts.worst = place;
}

bool ComesBefore(const VerdictCounts& left, const VerdictCounts& right) {
    if (left.band == nullptr || right.band == nullptr)
        return left.band == nullptr && right.band != nullptr;
    return *left.band < *right.band;
}

/// Those that are not measured, those with a margin, those without a limit.
std::pair<int, Decimal> SortKey(const Judgement& judgement) {
    if (judgement.verdict == Verdict::NotMeasured)
        return {0, {}};
    return judgement.margin ? std::pair(1, *judgement.margin) : std::pair(2, Decimal());
}

} // namespace

JudgementSummary Summarize(const RunResult& run, const Judgements& judgements) {
    JudgementSummary summary;
    std::unordered_map<const std::string*, std::size_t> places;
    for (std::uint32_t place = 0; place < judgements.all.size(); ++place) {
        const Measurement& measurement = run.measurements[judgements.all[place].measurement];
        const std::string* const band = run.SettingsOf(measurement)[Setting::Band];
        const auto [entry, isNew] = places.try_emplace(band, summary.bands.size());
        if (isNew)
            summary.bands.emplace_back().band = band;
        Count(summary.bands[entry->second], judgements, place);
        Count(summary.all, judgements, place);
    }
    std::sort(summary.bands.begin(), summary.bands.end(), ComesBefore);
    return summary;
}

std::vector<PlaceCounts> SummarizeBy(PlacePart part, const RunResult& run,
                                     const Judgements& judgements) {
    const LineGroups groups(run.sources, part);
    std::vector<PlaceCounts> all;
    for (const std::optional<std::string>& name : groups.Names())
        all.push_back({name, {}});
    for (std::uint32_t place = 0; place < judgements.all.size(); ++place) {
        const Measurement& measurement = run.measurements[judgements.all[place].measurement];
        Count(all[groups.GroupOf(run.LineOf(measurement))].counts, judgements, place);
    }
    std::erase_if(all, [](const PlaceCounts& group) { return group.counts.Total() == 0; });
    return all;
}

std::vector<std::uint32_t> NotPassed(const Judgements& judgements) {
    std::vector<std::uint32_t> places;
    for (std::uint32_t place = 0; place < judgements.all.size(); ++place) {
        if (judgements.all[place].verdict != Verdict::Pass)
            places.push_back(place);
    }
    std::stable_sort(places.begin(), places.end(),
                     [&judgements](std::uint32_t left, std::uint32_t right) {
                         return SortKey(judgements.all[left]) < SortKey(judgements.all[right]);
                     });
    return places;
}

} // namespace Bench
