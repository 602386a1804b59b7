#include "Tools/SarvexTool/Bench/CommandLine.h"

#include "Modules/xFramework/OSAL/Console.h"
#include "Tools/SarvexTool/Bench/Commands/Stop.h"
#include "Tools/SarvexTool/Bench/Commands/Subcommands.h"
#include "Tools/SarvexTool/Bench/Core/Nearest.h"
#include "Tools/SarvexTool/Bench/Core/Passwords.h"
#include "Tools/SarvexTool/Bench/Files/BadFile.h"
#include "Tools/SarvexTool/Bench/Files/FileNames.h"
#include "Tools/SarvexTool/Bench/Output/Problems.h"
#include "Tools/SarvexTool/Bench/Output/ShownText.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <optional>
#include <span>

namespace Bench {

namespace {

constexpr const char* programName = "SarvexToolBench";

/// The subcommands, in the order in which the help shows them.
constexpr std::array<Command (*)(Options), 9> addCommands{
    AddCheck, AddRun, AddStop, AddSplit, AddMerge, AddJudge, AddReport, AddCompare, AddHistory};

/// A text in lines of at most so many characters, cut at blanks.
std::string Wrapped(std::string text, std::size_t width) {
    std::size_t start = 0;
    while (text.size() - start > width) {
        const std::size_t blank = text.rfind(' ', start + width);
        if (blank == std::string::npos || blank < start)
            break;
        text[blank] = '\n';
        start = blank + 1;
    }
    return text;
}

/// Help texts for a console of 80 columns.
class Formatter : public CLI::Formatter {
public:
    std::string make_option_desc(const CLI::Option* option) const override {
        return Wrapped(CLI::Formatter::make_option_desc(option), columns - get_column_width());
    }
    std::string make_footer(const CLI::App* app) const override {
        return Wrapped(CLI::Formatter::make_footer(app), columns);
    }

private:
    // The last column stays free, because some consoles break the line there.
    static constexpr std::size_t columns = 79;
};

/// That there is no such thing, with the nearest one that there is.
std::string UnknownName(const std::string& thing, const std::string& name,
                        std::span<const char* const> known) {
    const std::string_view nearest = NearestName(name, known);
    return "there is no " + thing + " \"" + name + "\"" +
           (nearest.empty() ? "" : "; did you mean \"" + std::string(nearest) + "\"?");
}

std::string UnknownSubcommand(const CLI::App& app, const std::string& name) {
    std::vector<const char*> known;
    for (const CLI::App* const subcommand : app.get_subcommands({}))
        known.push_back(subcommand->get_name().c_str());
    return UnknownName("subcommand", name, known);
}

std::string UnknownOption(const CLI::App& options, const std::string& argument) {
    std::vector<std::string> names;
    for (const CLI::Option* const option : options.get_options()) {
        for (const std::string& name : option->get_lnames())
            names.push_back("--" + name);
    }
    std::vector<const char*> known;
    known.reserve(names.size());
    for (const std::string& name : names)
        known.push_back(name.c_str());
    return UnknownName("option", argument.substr(0, argument.find('=')), known);
}

bool IsGivenTooOften(const CLI::Option* option) {
    return option->get_items_expected_max() == 1 && option->count() > 1;
}

/// The subcommand that the arguments name last, as "history add"; null where they name none.
const CLI::App* DeepestParsed(const CLI::App& program) {
    const CLI::App* deepest = nullptr;
    for (std::vector<CLI::App*> parsed = program.get_subcommands(); !parsed.empty();
         parsed = deepest->get_subcommands())
        deepest = parsed.front();
    return deepest;
}

/// What these options have got that they do not know; the option library tells it only when all
/// that is required is there.
std::optional<std::string> Unexpected(const CLI::App& options) {
    const std::vector<std::string> extras = options.remaining();
    const auto unknown =
        std::find_if(extras.begin(), extras.end(),
                     [](const std::string& argument) { return argument.starts_with('-'); });
    if (unknown != extras.end())
        return UnknownOption(options, *unknown);
    if (!extras.empty() && !options.get_subcommands({}).empty())
        return UnknownSubcommand(options, extras.front());
    if (!extras.empty())
        return "the argument \"" + extras.front() +
               "\" is one too many; put a name that holds blanks in quotes";
    const std::vector<const CLI::Option*> all = options.get_options();
    const auto repeated = std::find_if(all.begin(), all.end(), IsGivenTooOften);
    if (repeated == all.end())
        return std::nullopt;
    return (*repeated)->get_name() + " is given more than once";
}

/// The options of the program or of the subcommand of that name.
const CLI::App& Named(const CLI::App& program, const std::string& name) {
    const auto found = program.get_subcommands(
        [&name](const CLI::App* subcommand) { return subcommand->get_name() == name; });
    if (!name.empty() && found.empty())
        throw WrongUsage(UnknownSubcommand(program, name));
    return name.empty() ? program : *found.front();
}

/// help SUBCOMMAND: the same as SUBCOMMAND --help.
Command AddHelp(CLI::App& program) {
    CLI::App* const options = program.add_subcommand("help", "Show how a subcommand is used");
    const auto name = std::make_shared<std::string>();
    options->add_option("SUBCOMMAND", *name, "Its name; without it all are listed");
    return {Options(*options), [&program, name](Surroundings& surroundings) {
                const CLI::App& shown = Named(program, *name);
                const std::string called =
                    name->empty() ? programName : std::string(programName) + " " + *name;
                // The text of the program's own function would be that of the chosen subcommand.
                surroundings.out.stream
                    << shown.get_formatter()->make_help(&shown, called, CLI::AppFormatMode::Normal);
                return ExitCode::Fine;
            }};
}

/// The options of the program and of all its subcommands.
class Parser {
public:
    Parser() : m_options("Everything around a power test of SarvexToolClient.", programName) {
        // A file name may begin with a slash on every system.
        m_options.allow_windows_style_options(false);
        m_options.formatter(std::make_shared<Formatter>());
        m_options.set_help_flag("-h,--help", "Show this help and end");
        m_options.set_version_flag("--version", std::string(programName) + " " SARVEX_BENCH_VERSION,
                                   "Show the version and end");
        m_options.require_subcommand(1);
        for (const auto addCommand : addCommands)
            m_commands.push_back(addCommand(Options(m_options)));
        m_commands.push_back(AddHelp(m_options));
        m_help = m_options.get_subcommand("help");
    }

    /// The exit code of what the arguments ask for.
    int Run(std::vector<std::string> arguments, Surroundings& surroundings) {
        if (AsksForHelp(arguments))
            arguments.back() = "--help";
        try {
            HandOn(arguments, surroundings);
            RequireKnownSubcommand(arguments);
            m_options.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
            const int exitCode = Chosen().run(surroundings);
            m_standsWithoutOutput = Chosen().standsWithoutOutput;
            return exitCode;
        } catch (const CLI::CallForHelp&) {
            surroundings.out.stream << m_options.help();
            return ExitCode::Fine;
        } catch (const CLI::CallForVersion&) {
            surroundings.out.stream << m_options.version() << "\n";
            return ExitCode::Fine;
        } catch (const CLI::ParseError& error) {
            return Complain(UnexpectedIn(arguments).value_or(error.what()), surroundings);
        } catch (const WrongUsage& error) {
            return Complain(error.what(), surroundings);
        }
    }

    /// The exit code where standard output has not taken all.
    int WithoutOutput(int exitCode) const {
        return m_standsWithoutOutput ? exitCode : std::max<int>(exitCode, ExitCode::Failed);
    }

private:
    /// In the words of Windows, alone or after a subcommand: no file has this name there.
    static bool AsksForHelp(const std::vector<std::string>& arguments) {
        return !arguments.empty() && arguments.size() <= 2 && arguments.back() == "/?" &&
               !arguments.front().starts_with('-');
    }

    /// Takes what follows "--" off the arguments of run, which hands it on.
    static void HandOn(std::vector<std::string>& arguments, Surroundings& surroundings) {
        const auto dashes = std::find(arguments.begin(), arguments.end(), "--");
        if (dashes == arguments.end() || arguments.front() != "run")
            return;
        surroundings.handedOn.assign(dashes + 1, arguments.end());
        arguments.erase(dashes, arguments.end());
    }

    /// Of an unknown one the option library says only that one is missing.
    void RequireKnownSubcommand(const std::vector<std::string>& arguments) const {
        if (!arguments.empty() && !arguments.front().starts_with('-'))
            Named(m_options, arguments.front());
    }

    const Command& Chosen() const {
        for (const Command& command : m_commands) {
            if (command.options.IsParsed())
                return command;
        }
        throw WrongUsage("a subcommand is needed");
    }

    /// What neither the program nor the subcommand that the arguments name knows.
    std::optional<std::string> UnexpectedIn(const std::vector<std::string>& arguments) const {
        const CLI::App* const parsed = DeepestParsed(m_options);
        if (parsed == nullptr)
            return Unexpected(m_options);
        if (arguments.front().starts_with('-'))
            return "\"" + arguments.front() + "\" is in front of the subcommand; write it after it";
        return Unexpected(*parsed);
    }

    int Complain(const std::string& problem, Surroundings& surroundings) const {
        std::string named = programName;
        for (std::vector<CLI::App*> parsed = m_options.get_subcommands();
             !parsed.empty() && parsed.front() != m_help;
             parsed = parsed.front()->get_subcommands())
            named += " " + parsed.front()->get_name();
        surroundings.err.stream << named << ": " << MakeHarmless(WithoutPasswords(problem))
                                << "\nRun " << named << " --help for the options.\n";
        return ExitCode::Failed;
    }

    CLI::App m_options;
    std::vector<Command> m_commands;
    const CLI::App* m_help = nullptr;
    bool m_standsWithoutOutput = false;
};

bool WantsNoColours() {
    const char* const noColour = std::getenv("NO_COLOR"); // NOLINT(concurrency-mt-unsafe)
    return noColour != nullptr && *noColour != '\0';
}

Console ConsoleOf(std::ostream& stream, OSAL::StandardStream number) {
    return {stream, OSAL::IsTerminal(number) && !WantsNoColours()};
}

} // namespace

int RunProgram(const std::vector<std::string>& arguments, Surroundings& surroundings) {
    try {
        Parser parser;
        const int exitCode = parser.Run(arguments, surroundings);
        // That a transmitter may be on are the last words.
        if (surroundings.out.stream.flush() || exitCode == ExitCode::StopNotConfirmed)
            return exitCode;
        const BadOutput bad(StandardStreamName, "cannot be written");
        PrintProblems(surroundings.err, bad.File(), bad.Problems());
        return parser.WithoutOutput(exitCode);
    } catch (const BadFile& bad) {
        PrintProblems(surroundings.err, bad.File(), bad.Problems());
    } catch (const std::exception& error) {
        surroundings.err.stream << programName << ": "
                                << MakeHarmless(WithoutPasswords(error.what())) << "\n";
    }
    return ExitCode::Failed;
}

int RunProgram(const std::vector<std::string>& arguments) {
    // What a reader has not taken is to wait nowhere but in a write: the C runtime would write its
    // own buffer at the program's end, and wait for the reader there (Windows).
    std::ios_base::sync_with_stdio(false);
    Surroundings surroundings{std::cin, ConsoleOf(std::cout, OSAL::StandardStream::Output),
                              ConsoleOf(std::cerr, OSAL::StandardStream::Error)};
    return RunProgram(arguments, surroundings);
}

} // namespace Bench
