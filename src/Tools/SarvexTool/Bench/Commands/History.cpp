#include "Tools/SarvexTool/Bench/Commands/HistoryCommands.h"
#include "Tools/SarvexTool/Bench/Commands/Subcommands.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>

#include <utility>
#include <vector>

namespace Bench {

Command GroupOf(CLI::App& app, std::vector<Command> commands) {
    app.require_subcommand(1);
    return {&app, [commands = std::move(commands)](Surroundings& surroundings) {
                for (const Command& command : commands) {
                    if (command.options->parsed())
                        return command.run(surroundings);
                }
                throw WrongUsage("a subcommand is needed");
            }};
}

Command AddHistory(CLI::App& program) {
    CLI::App* const app = program.add_subcommand("history", "Keep runs, and follow them over time");
    app->footer("SarvexToolBench history SUBCOMMAND --help tells of each.");
    std::vector<Command> commands;
    for (const auto addCommand :
         {AddHistoryAdd, AddHistoryList, AddHistoryShow, AddHistoryExport, AddHistoryRemove,
          AddHistoryCheck, AddHistoryBaseline, AddHistoryTrend, AddHistoryReport})
        commands.push_back(addCommand(*app));
    return GroupOf(*app, std::move(commands));
}

} // namespace Bench
