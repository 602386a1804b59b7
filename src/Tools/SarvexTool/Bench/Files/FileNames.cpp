#include "Tools/SarvexTool/Bench/Files/FileNames.h"

#include "Modules/xFramework/OSAL/Console.h"

#include <algorithm>
#include <system_error>

namespace Bench {

namespace {

namespace fs = std::filesystem;

/// Whether two names lead to one file that exists.
bool AreSameExisting(const fs::path& first, const fs::path& second) {
    std::error_code ignored;
    return fs::equivalent(first, second, ignored);
}

fs::path Resolved(const fs::path& path) {
    std::error_code ignored;
    fs::path resolved = fs::weakly_canonical(fs::absolute(EndOfLinks(path), ignored), ignored);
    // A folder's name may end with a slash.
    if (!resolved.has_filename())
        resolved = resolved.parent_path();
    return resolved.empty() ? path : resolved;
}

/// Whether two names that lead to no file yet would lead to the same one.
bool WouldBeSame(const fs::path& first, const fs::path& second) {
    const fs::path left = Resolved(first);
    const fs::path right = Resolved(second);
    return OSAL::AreSameFileName(NameOf(left.filename()), NameOf(right.filename())) &&
           (left.parent_path() == right.parent_path() ||
            AreSameExisting(left.parent_path(), right.parent_path()));
}

bool AreSame(const std::string& first, const std::string& second) {
    if (first == StandardStreamName || second == StandardStreamName)
        return false;
    return first == second || AreSameExisting(PathOf(first), PathOf(second)) ||
           WouldBeSame(PathOf(first), PathOf(second));
}

/// Whether an output would replace the file that an input is read from.
bool Replaces(const std::string& output, const std::string& input) {
    if (input != StandardStreamName)
        return AreSame(input, output);
    // A system without this name replaces no file that is open.
    std::error_code ignored;
    return fs::is_regular_file(PathOf(output), ignored) &&
           AreSameExisting("/dev/stdin", PathOf(output));
}

std::ptrdiff_t CountStandard(const std::vector<std::string>& names) {
    return std::count(names.begin(), names.end(), StandardStreamName);
}

} // namespace

fs::path PathOf(const std::string& name) {
    return std::u8string(name.begin(), name.end());
}

std::string HintOfWildcards(const std::string& name) {
    return name.find_first_of("*?") == std::string::npos
               ? ""
               : "; this program expands no wildcards: name each file";
}

fs::path EndOfLinks(fs::path path) {
    // As many as the systems follow themselves.
    constexpr int mostLinks = 40;
    std::error_code error;
    for (int links = 0; links < mostLinks && fs::is_symlink(path, error); ++links) {
        const fs::path target = fs::read_symlink(path, error);
        if (error)
            break;
        // An absolute target takes the place of the folder.
        path = path.parent_path() / target;
    }
    return path;
}

std::string NameOf(const std::filesystem::path& path) {
    const std::u8string name = path.u8string();
    return {name.begin(), name.end()};
}

std::optional<std::string> ProblemOfNames(const std::vector<std::string>& inputs,
                                          const std::vector<std::string>& outputs) {
    if (CountStandard(inputs) > 1)
        return "standard input (-) can be read once only";
    if (CountStandard(outputs) > 1)
        return "standard output (-) can be written once only";
    for (auto output = outputs.begin(); output != outputs.end(); ++output) {
        const auto input = std::find_if(inputs.begin(), inputs.end(), [&](const std::string& name) {
            return Replaces(*output, name);
        });
        if (input != inputs.end())
            return "the output " + *output + " would replace the input " + *input;
        const auto other = std::find_if(outputs.begin(), output, [&](const std::string& name) {
            return AreSame(name, *output);
        });
        if (other != output)
            return "the output " + *output + " would replace the output " + *other;
    }
    return std::nullopt;
}

} // namespace Bench
