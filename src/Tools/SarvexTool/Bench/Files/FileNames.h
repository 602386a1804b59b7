#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace Bench {

/// The name of standard input among inputs, and of standard output among outputs.
inline constexpr const char* StandardStreamName = "-";

/// A file name in UTF-8 as a path of the system.
std::filesystem::path PathOf(const std::string& name);

/// A path of the system as a name in UTF-8.
std::string NameOf(const std::filesystem::path& path);

/// What else there is to say of a name that cannot be read: that wildcards are not expanded, if it
/// has some; empty otherwise.
std::string HintOfWildcards(const std::string& name);

/// Where a chain of links leads, whether a file is there or not; another path stays as it is.
std::filesystem::path EndOfLinks(std::filesystem::path path);

/// What is wrong with the names that one call of the program is given, if anything is: standard
/// input or output named twice, or an output that is the same file as an input or another output,
/// by whatever names and whether it exists already or not. The text has no end mark.
std::optional<std::string> ProblemOfNames(const std::vector<std::string>& inputs,
                                          const std::vector<std::string>& outputs);

} // namespace Bench
