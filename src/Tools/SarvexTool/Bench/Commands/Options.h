#pragma once

#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
} // namespace CLI

namespace Bench {

/// An option of a subcommand, or an argument with a place of its own. Belongs to the program's
/// options.
class Option {
public:
    explicit Option(CLI::Option& option) : m_pOption(&option) {}

    Option Required() const;
    /// What the help shows for its value; nothing for an empty text.
    Option TypeName(const std::string& name) const;
    /// The help shows the value that it has now.
    Option ShowDefault() const;

private:
    CLI::Option* m_pOption;
};

/// The options of the program or of one of its subcommands, which belong to the program's. Commands
/// know the library of options by this alone: each source that includes that one compiles all of
/// it.
class Options {
public:
    explicit Options(CLI::App& app) : m_pApp(&app) {}

    /// Each of these takes the names, as "-o,--output" or "FILE", and where to put what was given;
    /// that must live until the arguments were parsed.
    Option Add(const std::string& names, std::string& value, const std::string& help) const;
    Option Add(const std::string& names, std::optional<std::string>& value,
               const std::string& help) const;
    /// One that may be given several times.
    Option Add(const std::string& names, std::vector<std::string>& values,
               const std::string& help) const;
    /// One without a value.
    void AddFlag(const std::string& names, bool& isGiven, const std::string& help) const;

    Options AddSubcommand(const std::string& name, const std::string& help) const;
    /// One of the subcommands has to be given.
    void RequireSubcommand() const;
    /// What the help ends with.
    void Footer(const std::string& text) const;

    /// Whether the arguments name this subcommand.
    bool IsParsed() const;
    /// The names of the options that the arguments hold.
    std::vector<std::string> Given() const;

private:
    CLI::App* m_pApp;
};

} // namespace Bench
