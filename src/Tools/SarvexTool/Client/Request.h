#pragma once

// Public, stable within a major version. Texts in, texts out; for several threads as long as no
// variable changes, for $(name) in a text is expanded. Throws std::bad_alloc, and what a string
// provider throws.

#include <string>

namespace SarvexTool {

/// The command line that the daemon is given: "CLI -1 ", the prefix and the argument text. The
/// argument text begins with a blank, so a prefix that ends in one yields two in a row: the daemon
/// is given exactly these bytes.
std::string BuildCommandLine(const std::string& prefix, const std::string& argumentText);

/// The HTTP request that carries a command line to the daemon at the address (a host name or
/// numeric address, without port). The body is the command line, unchanged.
std::string BuildRequest(const std::string& address, const std::string& commandLine);

} // namespace SarvexTool
