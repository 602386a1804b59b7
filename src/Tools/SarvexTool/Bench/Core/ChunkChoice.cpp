#include "Tools/SarvexTool/Bench/Core/ChunkChoice.h"

#include <algorithm>
#include <string_view>
#include <unordered_map>

namespace Bench {

namespace {

constexpr ProblemKind foreignKind{Severity::Error, "runs of no chunk"};
constexpr ProblemKind missingKind{Severity::Error, "chunks without a complete run"};
constexpr ProblemKind doubledKind{Severity::Error, "chunks with more than one complete run"};

/// "chunk-0003.csv (lines 502 to 751)"
std::string NameOf(const ManifestChunk& chunk) {
    return chunk.file + " (lines " + std::to_string(chunk.lines.first) + " to " +
           std::to_string(chunk.lines.last) + ")";
}

class Chooser {
public:
    Chooser(std::span<const ManifestChunk> chunks, std::span<const FoundRun> runs,
            ProblemList& problems)
        : m_chunks(chunks), m_runs(runs), m_problems(problems), m_ofChunk(chunks.size()) {}

    ChunkChoice Choose(bool isPartial) {
        SortRuns();
        for (std::size_t chunk = 0; chunk < m_chunks.size(); ++chunk)
            ChooseFor(chunk, isPartial);
        for (std::size_t chunk = 0; chunk < m_chunks.size(); ++chunk)
            AddUnused(chunk);
        std::sort(m_choice.unused.begin(), m_choice.unused.end(),
                  [](const auto& left, const auto& right) { return left.run < right.run; });
        return m_choice;
    }

private:
    /// Gives each run to its chunk.
    void SortRuns() {
        std::unordered_map<std::string_view, std::size_t> places;
        for (std::size_t chunk = 0; chunk < m_chunks.size(); ++chunk)
            places.emplace(m_chunks[chunk].file, chunk);
        for (std::size_t run = 0; run < m_runs.size(); ++run) {
            const auto found = places.find(m_runs[run].testFile);
            if (found == places.end())
                TellForeign(run, "of " + m_runs[run].testFile + ", which is none of the chunks");
            else if (m_chunks[found->second].sha256 != m_runs[run].sha256)
                TellForeign(run, "of another " + m_runs[run].testFile +
                                     " than the manifest's: their hashes differ");
            else
                m_ofChunk[found->second].push_back(run);
        }
    }

    void TellForeign(std::size_t run, const std::string& what) {
        m_problems.Add(foreignKind, 0, 0,
                       m_runs[run].directory + " is a run " + what +
                           "; move it away from the runs of the chunks");
    }

    void ChooseFor(std::size_t chunk, bool isPartial) {
        const std::vector<std::size_t>& runs = m_ofChunk[chunk];
        const auto isComplete = [this](std::size_t run) { return m_runs[run].isComplete; };
        const auto first = std::find_if(runs.begin(), runs.end(), isComplete);
        const auto count = std::count_if(runs.begin(), runs.end(), isComplete);
        m_choice.used.emplace_back();
        if (count > 1)
            TellDoubled(chunk);
        else if (count == 1) {
            // What its journal really has is seen when it is read.
            m_choice.used.back() = {*first, m_chunks[chunk].lines.Count()};
            ++m_choice.complete;
        } else if (!isPartial)
            TellMissing(chunk);
        else
            m_choice.used.back() = Farthest(chunk);
    }

    /// The first one of those with the most finished lines; nothing where no line is finished.
    std::optional<ChunkChoice::Used> Farthest(std::size_t chunk) const {
        ChunkChoice::Used farthest;
        for (const std::size_t run : m_ofChunk[chunk]) {
            const std::size_t lines =
                std::min<std::size_t>(m_runs[run].linesDone, m_chunks[chunk].lines.Count());
            if (lines > farthest.lines)
                farthest = {run, lines};
        }
        return farthest.lines == 0 ? std::nullopt : std::optional(farthest);
    }

    void TellDoubled(std::size_t chunk) {
        std::string names;
        for (const std::size_t run : m_ofChunk[chunk]) {
            if (m_runs[run].isComplete)
                names += (names.empty() ? "" : ", ") + m_runs[run].directory;
        }
        m_problems.Add(doubledKind, 0, 0,
                       NameOf(m_chunks[chunk]) + " has more than one complete run: " + names +
                           "; move all but one away from the runs of the chunks");
    }

    void TellMissing(std::size_t chunk) {
        const std::size_t attempts = m_ofChunk[chunk].size();
        const std::string why = attempts == 0
                                    ? std::string(" was not run")
                                    : " has no complete run, only " + std::to_string(attempts) +
                                          (attempts == 1 ? " that is not" : " that are not");
        m_problems.Add(missingKind, 0, 0, NameOf(m_chunks[chunk]) + why);
    }

    void AddUnused(std::size_t chunk) {
        for (const std::size_t run : m_ofChunk[chunk]) {
            if (!m_choice.used[chunk] || m_choice.used[chunk]->run != run)
                m_choice.unused.push_back({run, chunk, m_runs[run].linesDone});
        }
    }

    std::span<const ManifestChunk> m_chunks;
    std::span<const FoundRun> m_runs;
    ProblemList& m_problems;
    /// The runs of each chunk.
    std::vector<std::vector<std::size_t>> m_ofChunk;
    ChunkChoice m_choice;
};

} // namespace

ChunkChoice ChooseRuns(std::span<const ManifestChunk> chunks, std::span<const FoundRun> runs,
                       bool isPartial, ProblemList& problems) {
    return Chooser(chunks, runs, problems).Choose(isPartial);
}

} // namespace Bench
