#include "Tools/SarvexTool/Bench/Output/ProgressText.h"

#include "Tools/SarvexTool/Bench/Output/ShownText.h"

#include <algorithm>
#include <cmath>

namespace Bench {

namespace {

std::string TwoDigits(std::uint64_t number) {
    constexpr std::uint64_t ten = 10;
    return (number < ten ? "0" : "") + std::to_string(number);
}

std::string CountText(const RunProgress& progress) {
    constexpr std::size_t whole = 100;
    const std::size_t percent =
        progress.linesTotal == 0 ? whole : progress.linesDone * whole / progress.linesTotal;
    return std::to_string(progress.linesDone) + "/" + std::to_string(progress.linesTotal) + " (" +
           std::to_string(percent) + " %)";
}

std::string PowerText(const char* chain, const FinishedChain& finished) {
    return finished.power ? std::string(chain) + " " + finished.power->ToText() + " dBm" : "";
}

/// What the last line has measured; empty before the first.
std::string LastText(const LastLine& last) {
    if (last.line == 0)
        return "";
    const std::string a = PowerText(NameOf(Chain::A), last.a);
    const std::string b = PowerText(NameOf(Chain::B), last.b);
    const std::string both = a + (a.empty() || b.empty() ? "" : ", ") + b;
    return "; line " + std::to_string(last.line) + ": " + (both.empty() ? "no power" : both);
}

std::string CurrentText(const RunProgress& progress) {
    if (progress.line == 0)
        return "";
    const std::string settings = MakeHarmless(progress.settings);
    return "; line " + std::to_string(progress.line) + (settings.empty() ? "" : ": ") + settings;
}

} // namespace

std::string ClockText(double seconds) {
    constexpr std::uint64_t perMinute = 60;
    constexpr std::uint64_t perHour = 3600;
    const auto whole = static_cast<std::uint64_t>(std::llround(std::max(seconds, 0.0)));
    const std::uint64_t minutes = whole % perHour / perMinute;
    const std::string hours = std::to_string(whole / perHour) + ":" + TwoDigits(minutes);
    return (whole < perHour ? std::to_string(minutes) : hours) + ":" + TwoDigits(whole % perMinute);
}

std::string ProgressText(const RunProgress& progress) {
    const bool isMeasuring = progress.state.kind == RunState::Kind::Measuring;
    std::string text = CountText(progress) + ", " + ClockText(progress.elapsedSeconds);
    if (!isMeasuring)
        text += ", " + StateText(progress.state);
    else if (progress.remainingSeconds)
        text += ", about " + ClockText(*progress.remainingSeconds) + " left";
    if (progress.outcomes.NotMeasured() > 0)
        text += ", " + std::to_string(progress.outcomes.NotMeasured()) + " not measured";
    if (progress.verdicts)
        text += ", " + VerdictsText(*progress.verdicts);
    return text + LastText(progress.last) + CurrentText(progress);
}

std::string StateText(const RunState& state) {
    return std::string(NameOf(state.kind)) + " (" + ClockText(state.seconds) + ")" +
           (state.detail.empty() ? "" : ": ") + MakeHarmless(state.detail);
}

std::string VerdictsText(const VerdictTotals& verdicts) {
    std::string text;
    for (std::size_t index = 0; index < verdicts.size(); ++index) {
        const auto verdict = static_cast<Verdict>(index);
        const bool isTold = verdict == Verdict::Pass || verdicts.at(index) > 0;
        if (isTold && verdict != Verdict::NotMeasured)
            text += (text.empty() ? "" : ", ") + std::to_string(verdicts.at(index)) + " " +
                    NameOf(verdict);
    }
    return text;
}

} // namespace Bench
