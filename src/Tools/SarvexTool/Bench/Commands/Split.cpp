#include "Tools/SarvexTool/Bench/Commands/Subcommands.h"

#include "Modules/xFramework/OSAL/Process.h"
#include "Tools/SarvexTool/Bench/Commands/OptionValues.h"
#include "Tools/SarvexTool/Bench/Commands/RunChecks.h"
#include "Tools/SarvexTool/Bench/Core/Chunks.h"
#include "Tools/SarvexTool/Bench/Core/Reliance.h"
#include "Tools/SarvexTool/Bench/Files/FileNames.h"
#include "Tools/SarvexTool/Bench/Files/Input.h"
#include "Tools/SarvexTool/Bench/Files/PlanLines.h"
#include "Tools/SarvexTool/Bench/Files/Sha256.h"
#include "Tools/SarvexTool/Bench/Files/SplitDirectory.h"
#include "Tools/SarvexTool/Bench/Files/UtcTime.h"
#include "Tools/SarvexTool/Bench/Output/PlanText.h"
#include "Tools/SarvexTool/Bench/Output/Problems.h"
#include "Tools/SarvexTool/Bench/Output/ShownText.h"

#include <chrono>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Bench {

namespace {

constexpr LineNumber firstLine = 2;

struct SplitOptions {
    std::string plan;
    std::string lines;
    std::string output;
};

/// The lines of a plan on their way into chunks, in their order.
class ChunkWriter {
public:
    ChunkWriter(std::string_view plan, TextPool& pool) : m_lines(plan, pool) {}

    /// The next lines, each with the settings that it has when all before it are accepted.
    std::string TextOf(const LineRange& chunk) {
        std::string text;
        AppendHeader(text, m_lines.Columns());
        LineNumber line = 0;
        Settings own;
        while (line < chunk.last && m_lines.Read(line, own)) {
            m_finder.Add(line, own);
            m_carried.Write(line, own);
            AppendLine(text, m_lines.Columns(), m_carried.Effective());
        }
        return text;
    }

    /// What the lines so far have relied on.
    RelianceFinder& Reliances() { return m_finder; }

private:
    PlanLines m_lines;
    CarriedSettings m_carried;
    RelianceFinder m_finder;
};

std::string AbsoluteName(const std::string& name) {
    return NameOf(std::filesystem::absolute(PathOf(name)).lexically_normal());
}

/// Writes the chunks, the plan's copy and the manifest; tells what the lines rely on.
void WriteChunks(const SplitOptions& options, std::string_view plan,
                 const std::vector<LineRange>& chunks, TextPool& pool, ProblemList& reliances) {
    SplitDirectory directory(options.output,
                             {OSAL::ProcessId(), "", UtcTime(std::chrono::system_clock::now())});
    Manifest manifest{SARVEX_BENCH_VERSION,
                      {AbsoluteName(options.plan), directory.Write(PlanCopyName, plan),
                       chunks.back().last - firstLine + 1},
                      {}};
    ChunkWriter writer(plan, pool);
    for (const LineRange& chunk : chunks) {
        const std::string file = ChunkName(manifest.chunks.size() + 1, chunks.size());
        manifest.chunks.push_back({file, directory.Write(file, writer.TextOf(chunk)), chunk});
    }
    directory.Finish(manifest);
    TellReliances(writer.Reliances(), reliances);
}

int Split(const SplitOptions& options, Surroundings& surroundings) {
    constexpr LineNumber mostLines = 1'000'000'000;
    const LineNumber most = NumberOf("--lines", options.lines, 1, mostLines);
    if (options.plan == StandardStreamName)
        throw WrongUsage("the plan cannot come from standard input: its chunks are told by its "
                         "name; save it in a file");
    if (options.output == StandardStreamName || options.output.empty())
        throw WrongUsage("--output needs the name of a folder");
    const std::string plan = ReadInput(options.plan, surroundings.in);
    TextPool pool;
    const std::optional<LineNumber> lines = LinesFitToSplit(options.plan, plan, pool, surroundings);
    if (!lines)
        return ExitCode::Failed;
    const std::vector<LineRange> chunks = CutLines({firstLine, firstLine + *lines - 1}, most);
    ProblemList reliances;
    WriteChunks(options, plan, chunks, pool, reliances);
    PrintProblems(surroundings.err, options.plan, reliances.InOrder());
    surroundings.out.stream << MakeHarmless(options.output) << ": " << ChunksText(chunks, {})
                            << "\n";
    return ExitCode::Fine;
}

} // namespace

Command AddSplit(Options program) {
    const Options app =
        program.AddSubcommand("split", "Cut a test file into chunks for several benches");
    const auto options = std::make_shared<SplitOptions>();
    app.Add("PLAN", options->plan, "Test file without errors").Required().TypeName("");
    app.Add("--lines", options->lines, "The most lines of a chunk").Required().TypeName("N");
    app.Add("-o,--output", options->output,
            "Folder for the chunks, one that holds neither chunks nor a manifest")
        .Required()
        .TypeName("DIR");
    app.Footer("In the chunks each line writes all settings out, so that it needs no line before "
               "it. Exit code: 0 the chunks are written, 2 wrong usage, a file that has errors "
               "or cannot be read or written, or a folder that is not free.");
    return {app, [options](Surroundings& surroundings) { return Split(*options, surroundings); },
            true};
}

} // namespace Bench
