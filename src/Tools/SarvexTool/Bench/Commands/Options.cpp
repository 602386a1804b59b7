#include "Tools/SarvexTool/Bench/Commands/Options.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>

namespace Bench {

Option Option::Required() const {
    m_pOption->required();
    return *this;
}

Option Option::TypeName(const std::string& name) const {
    m_pOption->type_name(name);
    return *this;
}

Option Option::ShowDefault() const {
    m_pOption->capture_default_str();
    return *this;
}

Option Options::Add(const std::string& names, std::string& value, const std::string& help) const {
    return Option(*m_pApp->add_option(names, value, help));
}

Option Options::Add(const std::string& names, std::optional<std::string>& value,
                    const std::string& help) const {
    return Option(*m_pApp->add_option(names, value, help));
}

Option Options::Add(const std::string& names, std::vector<std::string>& values,
                    const std::string& help) const {
    return Option(*m_pApp->add_option(names, values, help));
}

void Options::AddFlag(const std::string& names, bool& isGiven, const std::string& help) const {
    m_pApp->add_flag(names, isGiven, help);
}

Options Options::AddSubcommand(const std::string& name, const std::string& help) const {
    return Options(*m_pApp->add_subcommand(name, help));
}

void Options::RequireSubcommand() const {
    m_pApp->require_subcommand(1);
}

void Options::Footer(const std::string& text) const {
    m_pApp->footer(text);
}

bool Options::IsParsed() const {
    return m_pApp->parsed();
}

std::vector<std::string> Options::Given() const {
    std::vector<std::string> names;
    for (const CLI::Option* const option : m_pApp->get_options()) {
        if (option->count() > 0)
            names.push_back(option->get_name());
    }
    return names;
}

} // namespace Bench
