#include "Tools/SarvexTool/Bench/Files/Manifest.h"

#include "Tools/SarvexTool/Bench/Files/BadFile.h"
#include "Tools/SarvexTool/Bench/Files/Input.h"
#include "Tools/SarvexTool/Bench/Files/JsonFields.h"

#include <algorithm>
#include <sstream>
#include <unordered_set>

namespace Bench {

namespace {

/// Grows when an older program would misunderstand what is written.
constexpr std::uint64_t formatVersion = 1;

constexpr LineNumber firstLine = 2;

constexpr std::string_view chunkPrefix = "chunk-";
constexpr std::string_view chunkSuffix = ".csv";
constexpr std::size_t leastDigits = 4;

std::string HashIn(const JsonFields& fields) {
    constexpr std::size_t digits = 64;
    std::string hash = fields.Text("sha256");
    if (hash.size() != digits || hash.find_first_not_of("0123456789abcdef") != std::string::npos)
        throw WrongJson("the value of \"sha256\" is not 64 hexadecimal digits in small letters");
    return hash;
}

ManifestPlan PlanIn(const JsonFields& fields) {
    ManifestPlan plan{fields.Text("name"), HashIn(fields), fields.Line("lines")};
    if (plan.lines == 0)
        throw WrongJson("the plan has no lines");
    return plan;
}

ManifestChunk ChunkIn(const JsonFields& fields) {
    ManifestChunk chunk{
        fields.Text("file"), HashIn(fields), {fields.Line("firstLine"), fields.Line("lastLine")}};
    // It is looked for in the manifest's own folder and nowhere else.
    if (!IsChunkName(chunk.file))
        throw WrongJson("\"" + chunk.file + "\" is no name of a chunk");
    return chunk;
}

[[noreturn]] void FailAt(const ManifestChunk& chunk, const std::string& what) {
    throw WrongJson("the chunks do not hold each line of the plan once: " + chunk.file + " " +
                    what);
}

void RequireEachLineOnce(const Manifest& manifest) {
    std::uint64_t next = firstLine;
    std::unordered_set<std::string_view> names;
    for (const ManifestChunk& chunk : manifest.chunks) {
        if (chunk.lines.first != next)
            FailAt(chunk, "begins at line " + std::to_string(chunk.lines.first) + " and not at " +
                              std::to_string(next));
        if (chunk.lines.last < chunk.lines.first)
            FailAt(chunk, "ends before it begins");
        if (!names.insert(chunk.file).second)
            FailAt(chunk, "is there twice");
        next = std::uint64_t{chunk.lines.last} + 1;
    }
    if (next != std::uint64_t{manifest.plan.lines} + firstLine)
        throw WrongJson("the chunks do not hold each line of the plan once: they end at line " +
                        std::to_string(next - 1) + " and the plan at line " +
                        std::to_string(std::uint64_t{manifest.plan.lines} + 1));
}

Manifest ManifestIn(const JsonFields& fields) {
    if (fields.Count("format") != formatVersion)
        throw WrongJson("the plan was split by another version of this program");
    Manifest manifest{fields.Text("programVersion"), PlanIn(fields.Object("plan")), {}};
    for (const JsonFields& chunk : fields.Objects("chunks"))
        manifest.chunks.push_back(ChunkIn(chunk));
    RequireEachLineOnce(manifest);
    return manifest;
}

} // namespace

std::string ChunkName(std::size_t number, std::size_t count) {
    const std::size_t digits = std::max(leastDigits, std::to_string(count).size());
    std::string name = std::to_string(number);
    name.insert(0, digits - std::min(digits, name.size()), '0');
    return std::string(chunkPrefix) + name + std::string(chunkSuffix);
}

bool IsChunkName(std::string_view name) {
    if (!name.starts_with(chunkPrefix) || !name.ends_with(chunkSuffix) ||
        name.size() < chunkPrefix.size() + leastDigits + chunkSuffix.size())
        return false;
    name.remove_prefix(chunkPrefix.size());
    name.remove_suffix(chunkSuffix.size());
    return name.find_first_not_of("0123456789") == std::string_view::npos;
}

std::string ToJsonText(const Manifest& manifest) {
    constexpr int indentation = 2;
    Json plan = Json::object();
    PutText(plan, "name", manifest.plan.name);
    plan["sha256"] = manifest.plan.sha256;
    plan["lines"] = manifest.plan.lines;
    Json chunks = Json::array();
    for (const ManifestChunk& chunk : manifest.chunks)
        chunks.push_back({{"file", chunk.file},
                          {"sha256", chunk.sha256},
                          {"firstLine", chunk.lines.first},
                          {"lastLine", chunk.lines.last}});
    Json json{{"format", formatVersion}};
    PutText(json, "programVersion", manifest.programVersion);
    json["plan"] = std::move(plan);
    json["chunks"] = std::move(chunks);
    return json.dump(indentation, ' ', true) + "\n";
}

Manifest ParseManifest(std::string_view text, const std::string& name) {
    try {
        return ManifestIn(JsonFields::Parse(text));
    } catch (const WrongJson& wrong) {
        throw BadInput(name, wrong.what());
    }
}

Manifest ReadManifest(const std::string& name) {
    std::istringstream noStandardInput;
    return ParseManifest(ReadInput(name, noStandardInput), name);
}

} // namespace Bench
