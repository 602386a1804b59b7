#pragma once

#include "Tools/SarvexTool/Bench/Core/Measurements.h"
#include "Tools/SarvexTool/Bench/Core/Sources.h"
#include "Tools/SarvexTool/Bench/Files/BadFile.h"
#include "Tools/SarvexTool/Bench/Files/Journal.h"

#include <istream>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Bench {

/// The files of one run.
struct ResultNames {
    /// result.csv, or "-" for standard input.
    std::string table;
    /// result.xml beside it; nothing beside standard input.
    std::optional<std::string> tree;
    /// journal.jsonl and run.json beside a result.csv of a supervised run; nothing without a
    /// journal.
    std::optional<std::string> journal = {};
    std::optional<std::string> facts = {};

    /// All names that are files.
    std::vector<std::string> All() const;
};

/// The files of a run that the user names by its result.csv, by the folder that holds it, or by
/// "-".
ResultNames NamesOf(const std::string& result);

/// A run as its files tell it.
struct Result {
    RunResult run;
    DeviceFacts device;
    RunPlace place;
};

/// Reads a run. Its texts are kept by the pool. Throws BadInput when result.csv cannot be read, and
/// with all that is wrong with it. A result.xml that is missing or broken is only said. Where there
/// is a journal, it tells why a power is missing and which rows count: those after its last entry
/// are of a line that was not finished. BadInput is thrown for a journal that cannot be read, or is
/// not that of the rows.
Result ReadResult(const ResultNames& names, std::istream& standardInput, TextPool& texts);

/// The measurements of a result.csv, whose name is for the problems only. The journal is null for a
/// run without one.
RunResult ParseResult(std::string_view bytes, const std::string& name, TextPool& texts,
                      JournalReader* pJournal = nullptr);

} // namespace Bench
