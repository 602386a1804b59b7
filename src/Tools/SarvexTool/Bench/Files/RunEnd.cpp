#include "Tools/SarvexTool/Bench/Files/RunEnd.h"

#include "Tools/SarvexTool/Bench/Files/FileNames.h"
#include "Tools/SarvexTool/Bench/Files/Input.h"
#include "Tools/SarvexTool/Bench/Files/JsonFields.h"

#include <filesystem>
#include <sstream>

namespace Bench {

namespace {

std::optional<EarlyEnd> EarlyEndOf(const JsonFields& facts, std::size_t journalledLines) {
    if (facts.Has("linesTotal")) {
        const auto total = static_cast<std::size_t>(facts.Count("linesTotal"));
        return journalledLines < total ? std::optional(EarlyEnd{journalledLines, total})
                                       : std::nullopt;
    }
    if (facts.Has("outcome") && facts.Text("outcome") == "complete")
        return std::nullopt;
    return EarlyEnd{journalledLines, std::nullopt};
}

} // namespace

std::optional<EarlyEnd> ReadEarlyEnd(const std::string& factsName, std::size_t journalledLines) {
    std::error_code ignored;
    if (!std::filesystem::exists(PathOf(factsName), ignored))
        return EarlyEnd{journalledLines, std::nullopt};
    if (!std::filesystem::is_regular_file(PathOf(factsName), ignored))
        throw BadInput(factsName, "cannot be read");
    std::istringstream noStandardInput;
    const std::string text = ReadInput(factsName, noStandardInput);
    try {
        return EarlyEndOf(JsonFields::Parse(text), journalledLines);
    } catch (const WrongJson& wrong) {
        throw BadInput(factsName, wrong.what());
    }
}

} // namespace Bench
