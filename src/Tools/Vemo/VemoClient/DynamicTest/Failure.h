#pragma once

#include "Modules/xFramework/Utilities/Exception.h"

#include <exception>
#include <optional>
#include <string>

namespace PowerTest {

/// Writes the message on standard error: the template with the text in place of ${1}. No line end
/// follows; that messages run together on one line is how the bench's scripts know them.
void PrintError(const std::string& messageTemplate, const std::string& text);

/// Runs the step and returns the message of the standard exception that ended it, if one did,
/// whether it was thrown as a value or as a pointer. What else is thrown passes through.
template <typename Step>
std::optional<std::string> FailureOf(const Step& step) {
    try {
        step();
        return std::nullopt;
    } catch (const std::exception&) {
        return Utilities::TakeCaughtException().text;
    } catch (const std::exception*) {
        return Utilities::TakeCaughtException().text;
    }
}

} // namespace PowerTest
