#include "Tools/SarvexTool/Bench/Commands/HistoryCommands.h"
#include "Tools/SarvexTool/Bench/Commands/Subcommands.h"

#include <utility>
#include <vector>

namespace Bench {

Command GroupOf(Options app, std::vector<Command> commands) {
    app.RequireSubcommand();
    return {app, [commands = std::move(commands)](Surroundings& surroundings) {
                for (const Command& command : commands) {
                    if (command.options.IsParsed())
                        return command.run(surroundings);
                }
                throw WrongUsage("a subcommand is needed");
            }};
}

Command AddHistory(Options program) {
    const Options app = program.AddSubcommand("history", "Keep runs, and follow them over time");
    app.Footer("SarvexToolBench history SUBCOMMAND --help tells of each.");
    std::vector<Command> commands;
    for (const auto addCommand :
         {AddHistoryAdd, AddHistoryList, AddHistoryShow, AddHistoryExport, AddHistoryRemove,
          AddHistoryCheck, AddHistoryBaseline, AddHistoryTrend, AddHistoryReport})
        commands.push_back(addCommand(app));
    return GroupOf(app, std::move(commands));
}

} // namespace Bench
