#include "Tools/SarvexTool/Bench/Files/MergedFacts.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace Bench {

namespace {

RunSource SourceOf(const ManifestChunk& chunk, const RunFolder& run) {
    const RunFacts& facts = run.facts;
    return {chunk.lines,   run.name,          facts.place,   facts.daemon,
            facts.macType, facts.countryCode, facts.started, facts.ended};
}

/// Puts the facts of the chunks' runs together.
class FactsMerger {
public:
    FactsMerger(std::span<const ManifestChunk> chunks, std::span<const RunFolder> runs,
                const ChunkChoice& choice)
        : m_chunks(chunks), m_runs(runs), m_choice(choice) {}

    RunFacts Merge() {
        for (std::size_t chunk = 0; chunk < m_chunks.size(); ++chunk) {
            if (m_choice.used[chunk])
                AddUsed(m_chunks[chunk], m_choice.used[chunk].value());
        }
        for (const ChunkChoice::Unused& unused : m_choice.unused)
            AddUnused(unused);
        m_merged.isMerged = true;
        m_merged.place = {};
        // Whoever merges says anew whether the whole is kept, and what there is to say of it.
        m_merged.note.reset();
        m_merged.options.keep = false;
        m_merged.options.store.reset();
        m_merged.outcome = m_choice.complete == m_chunks.size() ? "complete" : "partial";
        AddNotes();
        NoteDifferences();
        NoteFirmware();
        return std::move(m_merged);
    }

private:
    void AddUsed(const ManifestChunk& chunk, const ChunkChoice::Used& used) {
        const RunFolder& run = m_runs[used.run];
        if (m_merged.sources.empty()) {
            m_merged = WithoutNotes(run.facts);
            m_firstCommand = run.facts.options.firstCommand;
        }
        RunSource source = SourceOf(chunk, run);
        source.lines.last = chunk.lines.first + static_cast<LineNumber>(used.lines) - 1;
        m_merged.sources.push_back(std::move(source));
        AddTimes(run.facts);
        AddState(run.facts);
        CountNotes(run);
        CountDifferences(run.facts);
    }

    static RunFacts WithoutNotes(RunFacts facts) {
        facts.notes.clear();
        facts.stopConfirmed = true;
        return facts;
    }

    /// Moments of one form are in the order of their texts.
    void AddTimes(const RunFacts& facts) {
        m_merged.started = std::min(m_merged.started, facts.started);
        if (facts.ended)
            m_merged.ended = std::max(m_merged.ended, facts.ended);
    }

    void AddState(const RunFacts& facts) {
        m_merged.startPassedOn = m_merged.startPassedOn || facts.startPassedOn;
        m_merged.stopConfirmed =
            m_merged.stopConfirmed && (facts.stopConfirmed || !facts.startPassedOn);
        m_merged.closesIdleConnections =
            m_merged.closesIdleConnections || facts.closesIdleConnections;
    }

    void CountNotes(const RunFolder& run) {
        if (run.facts.startPassedOn && !run.facts.stopConfirmed)
            CountNote(run, "the last stop was not confirmed, so that the transmitter may have "
                           "stayed on");
        for (const std::string& note : run.facts.notes)
            CountNote(run, note);
    }

    void CountNote(const RunFolder& run, const std::string& note) {
        const auto known = std::find_if(m_notes.begin(), m_notes.end(),
                                        [&](const Note& other) { return other.text == note; });
        if (known == m_notes.end())
            m_notes.push_back({note, run.name, 1});
        else
            ++known->runs;
    }

    void CountDifferences(const RunFacts& facts) {
        m_otherMacTypes += std::size_t{facts.macType != m_merged.macType};
        m_otherCountryCodes += std::size_t{facts.countryCode != m_merged.countryCode};
        m_hasOtherFirmware = m_hasOtherFirmware || facts.firmware != m_merged.firmware;
        m_otherClients += std::size_t{facts.clientSha256 != m_merged.clientSha256};
        const RunOptions& options = facts.options;
        m_otherFirstCommands += std::size_t{options.firstCommand != m_firstCommand};
        if (options.firstCommand.empty() || options.firstCommandAccepted)
            return;
        ++m_refusedCommands;
        m_merged.options.firstCommand = options.firstCommand;
        m_merged.options.firstCommandAccepted = false;
    }

    /// Many runs may say the same.
    void AddNotes() {
        for (const Note& note : m_notes) {
            const std::size_t others = note.runs - 1;
            m_merged.AddNote(note.text + " (" + note.firstRun +
                             (others == 0 ? "" : " and " + std::to_string(others) + " more") + ")");
        }
    }

    void NoteDifferences() {
        AddDifference(m_otherMacTypes, "had another MAC type than that of the first lines");
        AddDifference(m_otherCountryCodes, "had another country code than that of the first lines");
        AddDifference(m_otherClients, "were made with another client than that of the first lines");
        AddDifference(m_otherFirstCommands,
                      "had another first command than that of the first lines");
        AddDifference(m_refusedCommands, "had a first command that the daemon did not accept");
    }

    void AddDifference(std::size_t count, const std::string& what) {
        if (count != 0)
            m_merged.AddNote(std::to_string(count) + " of the " +
                             std::to_string(m_merged.sources.size()) + " runs " + what +
                             "; sources tells of each run");
    }

    void NoteFirmware() {
        if (!m_hasOtherFirmware)
            return;
        m_merged.firmware.reset();
        m_merged.AddNote("the runs were not all measured with the same firmware");
    }

    void AddUnused(const ChunkChoice::Unused& unused) {
        const RunFolder& run = m_runs[unused.run];
        m_merged.otherAttempts.push_back(
            {SourceOf(m_chunks[unused.chunk], run), unused.lines, run.facts.outcome});
    }

    std::span<const ManifestChunk> m_chunks;
    std::span<const RunFolder> m_runs;
    const ChunkChoice& m_choice;
    RunFacts m_merged;
    /// What runs note, in the order in which it was first met.
    struct Note {
        std::string text;
        std::string firstRun;
        std::size_t runs = 0;
    };
    std::vector<Note> m_notes;
    std::size_t m_otherMacTypes = 0;
    std::size_t m_otherCountryCodes = 0;
    std::size_t m_otherClients = 0;
    bool m_hasOtherFirmware = false;
    /// That of the first lines; the whole may have a refused one.
    std::vector<std::string> m_firstCommand;
    std::size_t m_otherFirstCommands = 0;
    std::size_t m_refusedCommands = 0;
};

} // namespace

RunFacts MergedFacts(std::span<const ManifestChunk> chunks, std::span<const RunFolder> runs,
                     const ChunkChoice& choice) {
    return FactsMerger(chunks, runs, choice).Merge();
}

} // namespace Bench
