#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace OSAL {

enum class StandardStream : std::uint8_t { Input, Output, Error };

/// The program's arguments after its name, in UTF-8 whatever the system's code page; where the
/// system hands over bytes, these as they are.
std::vector<std::string> ReadArguments(int argc, const char* const argv[]);

/// Whether somebody sits at the other end of a standard stream.
bool IsTerminal(StandardStream stream);

/// How many columns the terminal at the other end has now; nothing when there is no terminal, or it
/// does not tell. Somebody may change it at any time.
std::optional<std::size_t> TerminalWidth(StandardStream stream);

/// While it lives, bytes pass the standard streams unchanged, and a console shows them as UTF-8 and
/// obeys escape sequences. The console is as it was before when it goes.
class PreparedConsole {
public:
    PreparedConsole();
    // On one system only there is something to undo.
    ~PreparedConsole(); // NOLINT(performance-trivially-destructible)
    PreparedConsole(const PreparedConsole&) = delete;
    PreparedConsole& operator=(const PreparedConsole&) = delete;

private:
    /// The code page that the console had; 0 when there is no console, or no system that needs one.
    [[maybe_unused]] std::uint32_t m_codePage = 0;
};

/// Whether the system takes two file names of one folder, in UTF-8, for the same.
bool AreSameFileName(const std::string& first, const std::string& second);

} // namespace OSAL
