#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace Bench {

/// What a daemon's answer to a command says, read as the client reads it.
struct Answer {
    /// Whether the daemon keeps the settings of the command.
    bool IsAccepted() const { return code == 0 || IsUncalibrated(); }
    bool IsUncalibrated() const;
    /// Whether it says for certain that a command was carried out.
    bool IsConfirmation() const { return explicitCode == 0; }

    /// What the client takes for the return code: 0 without one, 10 when the answer says
    /// "uncalibrated".
    std::int32_t code = 0;
    /// The code that the answer itself gives; nothing where it gives none, or no number.
    std::optional<std::int32_t> explicitCode;
    /// Whether the line after a marker is no number, which ends the client.
    bool isCodeUnreadable = false;
    bool hasErrors = false;
    /// Its error lines, or else its information lines, in one line, cut where they are very long;
    /// "return code N" where it has neither.
    std::string words;
    /// All lines of the body.
    std::string lines;
};

/// Reads the bytes of an answer, with its HTTP head and its end mark if there are any.
Answer ReadAnswer(std::string bytes);

/// Whether the body of an answer, which may have been cut anywhere, has a whole line with a return
/// code: of a line without its end nobody knows whether digits are missing.
bool HasReturnCode(std::string_view body);

/// The lines of a text in one, without empty ones.
std::string InOneLine(std::string_view text);

} // namespace Bench
