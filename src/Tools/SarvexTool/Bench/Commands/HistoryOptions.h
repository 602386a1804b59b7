#pragma once

#include "Tools/SarvexTool/Bench/Commands/Command.h"
#include "Tools/SarvexTool/Bench/Core/Kept.h"
#include "Tools/SarvexTool/Bench/History/Store.h"
#include "Tools/SarvexTool/Bench/History/StoreName.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Bench {

/// What --store names, or the usual place. Throws WrongUsage.
StoreName StoreNameOf(const std::optional<std::string>& store);

/// Opens a store to change it; it is made where there is none. Throws StoreError and WrongUsage.
Store OpenToWrite(const std::optional<std::string>& store);

/// Opens a store to read it. Throws StoreError, where there is none StoreMissing, and WrongUsage.
Store OpenToRead(const std::optional<std::string>& store);

/// Opens a store to read it; nothing where neither an option nor the environment names it and
/// nothing was ever kept in the usual place, which is said to people then.
std::optional<Store> OpenIfKept(const std::optional<std::string>& store, const Console& console);

/// As RequireDistinctFiles, where a store is read or written besides: no output may be its file,
/// nor one that the database makes beside it. Throws WrongUsage.
void RequireDistinctFiles(const std::vector<std::string>& inputs,
                          const std::vector<std::string>& outputs,
                          const std::optional<std::string>& store);

void AddStoreOption(Options app, std::optional<std::string>& store);

/// Which runs are meant, as the options say it.
struct FilterArguments {
    std::optional<std::string> since;
    std::optional<std::string> until;
    std::optional<std::string> bench;
    std::optional<std::string> device;
    std::optional<std::string> firmware;
    std::optional<std::string> file;
    std::optional<std::string> verdict;
};

void AddFilterOptions(Options app, FilterArguments& arguments);

/// Throws WrongUsage.
RunFilter FilterOf(const FilterArguments& arguments);

/// What was asked for, in words for people: "bench B1", "since 2026-03-09".
std::vector<std::string> PhrasesOf(const FilterArguments& arguments);

/// A moment from an option, as 2026-03-09T08:05:00Z or as a day, of which the first second counts;
/// in seconds since 1970, UTC. Throws WrongUsage.
std::int64_t MomentOf(const std::string& option, const std::string& text);

/// This moment, in seconds since 1970, UTC.
std::int64_t Now();

} // namespace Bench
