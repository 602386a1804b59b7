#pragma once

#include "Tools/SarvexTool/Bench/Core/Differences.h"
#include "Tools/SarvexTool/Bench/Core/Verdicts.h"

#include <span>
#include <string>
#include <vector>

namespace Bench {

/// The settings that are known, for example "Band 5, Chains AB"; less those that are left out.
/// Cells are as they were read: what shows the text makes it harmless.
std::string PhraseOf(const Settings& settings, std::span<const Setting> leftOut = {});

/// "12.5 to 14 dBm", "at least 12.5 dBm", "at most 14 dBm" or "without bounds".
std::string PhraseOf(const Limit& limit);

/// The verdict with its figures, for example "too low by 0.5 dB: 12 dBm, limits 12.5 to 14 dBm".
std::string PhraseOf(const RunResult& run, const Judgement& judgement);

/// A difference with its figures, for example "changed by -0.7 dB: 12.5 dBm to 11.8 dBm".
std::string PhraseOf(const RunResult& oldRun, const RunResult& newRun,
                     const Difference& difference);

/// "not measured: no power was reported" or "12.5 dBm".
std::string PhraseOf(const Measurement& measurement);

/// That so many powers of a run, at least one, do not count by a setting that is uncertain.
std::string NoteOfUncertain(std::size_t count);

/// A change in dB with its sign: "+0.5 dB".
std::string SignedDecibels(Decimal change);

/// A number rounded to thousandths, without zeros at its end and without an exponent; never "-0".
std::string Rounded(double number);

/// "1 line", "2 lines".
std::string Counted(std::size_t count, const std::string& word);

/// "Bench", "Device" or "Attempt".
std::string TitleOf(PlacePart part);

/// Each with a capital letter and an end mark: "the daemon is gone" becomes "The daemon is gone.".
std::vector<std::string> AsSentences(std::vector<std::string> texts);

} // namespace Bench
