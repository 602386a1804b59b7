// Property: whatever bytes a result has that can be read, and whatever is told of its run, a store
// keeps it as it is: the facts, the powers and the files come back unchanged, a check finds nothing
// wrong, a filter by any of the texts finds just this run, and nothing of it is left when it is
// removed.
//
// Input: a group with the result.csv, then one with the run's name, bench, device, firmware and
// note, one record each, then one with a text that is looked for as a run.

#include "Tools/SarvexTool/Bench/Files/KeptFiles.h"
#include "Tools/SarvexTool/Bench/History/Migrations.h"
#include "Tools/SarvexTool/Bench/History/Store.h"
#include "Tools/SarvexTool/Bench/History/StoreName.h"
#include "fuzz/Support/Check.h"
#include "fuzz/Support/Input.h"
#include "tests/Support/Files.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace {

using namespace Bench;

/// A store in a file of its own, without a run.
Store& TheStore() {
    static const TestSupport::TemporaryDirectory directory;
    static Store store = [] {
        std::unique_ptr<Database> database =
            OpenDatabase(StoreName::Parse(directory.Path("history.db")), OpenFor::Writing);
        Migrate(*database);
        return Store(std::move(database));
    }();
    return store;
}

/// Nothing for bytes that are no result.
std::optional<RunToKeep> RunOf(const std::string& bytes, const Parts& told, TextPool& texts) {
    RunToKeep run;
    try {
        run.files = {{"result.csv", bytes}};
        run.result = ReadKeptResult(run.files, "result.csv", texts).run;
    } catch (const BadInput&) {
        return std::nullopt;
    }
    KeptFacts& facts = run.facts;
    facts.hash = HashOf(run.files);
    facts.name = told[0];
    facts.bench = told[1];
    facts.device = told[2];
    facts.firmware = told[3];
    facts.note = told[4];
    facts.parts = {{facts.bench, facts.device, std::nullopt}};
    facts.lines = run.result.configurations.size();
    facts.measurements = run.result.measurements.size();
    for (const Measurement& measurement : run.result.measurements)
        facts.measured += std::uint64_t{measurement.power.has_value()};
    run.parts.assign(run.result.configurations.size(), 0);
    return run;
}

void CheckPowers(const RunToKeep& run, TextPool& texts) {
    // Nothing for what was not measured.
    std::vector<std::optional<double>> expected;
    for (const Measurement& measurement : run.result.measurements)
        expected.push_back(measurement.power ? std::optional(measurement.power->ToDouble())
                                             : std::nullopt);
    std::vector<std::optional<double>> powers;
    std::vector<Settings> configurations;
    TheStore().ReadPowers(
        {}, texts, [&](const KeptHistory& history) { configurations = history.configurations; },
        [&](const KeptPower& power) { powers.push_back(power.power); });
    Check(powers == expected, "the powers come back in their order");
    for (const Configuration& configuration : run.result.configurations) {
        Check(std::find(configurations.begin(), configurations.end(), configuration.settings) !=
                  configurations.end(),
              "each configuration comes back");
    }
}

void CheckKept(const RunToKeep& run, TextPool& texts) {
    Store& store = TheStore();
    Check(store.Add(run, 1), "a run is new");
    Check(!store.Add(run, 2), "a run is kept once");
    RunFilter filter;
    filter.file = run.facts.name;
    filter.bench = run.facts.bench;
    filter.device = run.facts.device;
    filter.firmware = run.facts.firmware;
    KeptFacts expected = run.facts;
    expected.keptAt = 1;
    Check(store.List(filter) == std::vector{expected}, "a filter finds the run as it was told");
    Check(store.FilesOf(run.facts.hash) == run.files, "the files come back");
    CheckPowers(run, texts);
    const StoreCheck check = store.Check();
    CheckEqual(check.problems.size(), std::size_t{0}, "a check finds nothing wrong");
    store.Remove(run.facts.hash, false);
    Check(store.List({}).empty(), "nothing is left of a run that was removed");
}

/// Any text names a run, or none.
void CheckSearch(const std::string& text) {
    try {
        TheStore().Find(text);
        Check(false, "nothing is found where nothing is kept");
    } catch (const NotKept& none) {
        Check(none.what()[0] != '\0', "it is said that nothing is found");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Parts groups(ToText(data, size), GroupSeparator);
    TextPool texts;
    if (const auto run = RunOf(groups[0], Parts(groups[1], RecordSeparator), texts))
        CheckKept(*run, texts);
    CheckSearch(groups[2]);
    return 0;
}
