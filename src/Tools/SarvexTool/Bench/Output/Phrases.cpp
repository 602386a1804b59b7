#include "Tools/SarvexTool/Bench/Output/Phrases.h"

#include <algorithm>
#include <cctype>
#include <cmath>

namespace Bench {

namespace {

std::string Decibels(Decimal power) {
    return power.ToText() + " dB";
}

std::string DecibelMilliwatts(Decimal power) {
    return power.ToText() + " dBm";
}

std::string Capitalized(std::string text) {
    if (!text.empty())
        text.front() = static_cast<char>(std::toupper(static_cast<unsigned char>(text.front())));
    return text;
}

std::string OutOfLimits(const Measurement& measurement, const Judgement& judgement) {
    return std::string(NameOf(judgement.verdict)) + " by " + Decibels(-*judgement.margin) + ": " +
           DecibelMilliwatts(*measurement.power) + ", limits " + PhraseOf(*judgement.limit);
}

std::string Passed(const Measurement& measurement, const Judgement& judgement) {
    std::string text =
        "pass: " + DecibelMilliwatts(*measurement.power) + ", limits " + PhraseOf(*judgement.limit);
    if (judgement.margin)
        text += ", margin " + Decibels(*judgement.margin);
    return text;
}

} // namespace

std::string PhraseOf(const Settings& settings, std::span<const Setting> leftOut) {
    std::string text;
    for (std::size_t index = 0; index < SettingCount; ++index) {
        const auto setting = static_cast<Setting>(index);
        const std::string* const value = settings[setting];
        if (value == nullptr || std::find(leftOut.begin(), leftOut.end(), setting) != leftOut.end())
            continue;
        text.append(text.empty() ? "" : ", ").append(NameOf(setting)).append(" ").append(*value);
    }
    return text;
}

std::string PhraseOf(const Limit& limit) {
    if (limit.minimum && limit.maximum)
        return limit.minimum->ToText() + " to " + DecibelMilliwatts(*limit.maximum);
    if (limit.minimum)
        return "at least " + DecibelMilliwatts(*limit.minimum);
    if (limit.maximum)
        return "at most " + DecibelMilliwatts(*limit.maximum);
    return "without bounds";
}

std::string PhraseOf(const Measurement& measurement) {
    if (measurement.power)
        return DecibelMilliwatts(*measurement.power);
    return "not measured: " + measurement.reason.ToText();
}

std::string PhraseOf(const RunResult& run, const Judgement& judgement) {
    const Measurement& measurement = run.measurements[judgement.measurement];
    switch (judgement.verdict) {
    case Verdict::Pass:
        return Passed(measurement, judgement);
    case Verdict::TooLow:
    case Verdict::TooHigh:
        return OutOfLimits(measurement, judgement);
    case Verdict::NotMeasured:
        return PhraseOf(measurement);
    case Verdict::NoLimit:
        break;
    }
    return "no limit fits: " + PhraseOf(measurement);
}

std::string PhraseOf(const RunResult& oldRun, const RunResult& newRun,
                     const Difference& difference) {
    const auto before = [&] { return PhraseOf(oldRun.measurements[*difference.oldMeasurement]); };
    const auto after = [&] { return PhraseOf(newRun.measurements[*difference.newMeasurement]); };
    switch (difference.kind) {
    case Difference::Kind::Changed:
        return "changed by " + SignedDecibels(difference.change) + ": " + before() + " to " +
               after() + (difference.isWithinNoise ? ", within the noise" : "");
    case Difference::Kind::MeasuredInOldOnly:
        return "measured in the old run only: " + before() + ", then " + after();
    case Difference::Kind::MeasuredInNewOnly:
        return "measured in the new run only: " + after() + ", before that " + before();
    case Difference::Kind::InOldOnly:
        return "in the old run only: " + before();
    case Difference::Kind::InNewOnly:
        break;
    }
    return "in the new run only: " + after();
}

std::string NoteOfUncertain(std::size_t count) {
    return count == 1 ? "1 of the powers does not count, because one of its settings is uncertain; "
                        "judge and report name it"
                      : std::to_string(count) +
                            " of the powers do not count, because a setting of theirs is "
                            "uncertain; judge and report name them";
}

std::string SignedDecibels(Decimal change) {
    return (change > Decimal() ? "+" : "") + Decibels(change);
}

std::string Rounded(double number) {
    constexpr double thousandths = 1000;
    constexpr std::int64_t unitsOfThousandth = 1'000'000;
    return Decimal::FromUnits(std::llround(number * thousandths) * unitsOfThousandth).ToText();
}

std::string Counted(std::size_t count, const std::string& word) {
    return std::to_string(count) + " " + word + (count == 1 ? "" : "s");
}

std::string TitleOf(PlacePart part) {
    return Capitalized(NameOf(part));
}

std::vector<std::string> AsSentences(std::vector<std::string> texts) {
    for (std::string& text : texts) {
        text.erase(text.find_last_not_of('.') + 1);
        text = Capitalized(text) + ".";
    }
    return texts;
}

} // namespace Bench
