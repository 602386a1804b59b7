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

/// Runs of which the same is to be told.
struct Runs {
    std::string first;
    std::size_t count = 0;

    void AddIf(bool isOne, const RunFolder& run) {
        if (isOne && count++ == 0)
            first = run.name;
    }

    std::string Named() const {
        return " (" + first + (count == 1 ? "" : " and " + std::to_string(count - 1) + " more") +
               ")";
    }
};

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
        CountDifferences(run);
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
        CountMissedStop(run);
        for (const std::string& note : run.facts.notes)
            CountNote(run, note);
    }

    void CountMissedStop(const RunFolder& run) {
        if (run.facts.startPassedOn && !run.facts.stopConfirmed)
            CountNote(run, run.facts.ended
                               ? "the last stop was not confirmed, so that the transmitter may "
                                 "have stayed on"
                               : "an attempt went on at the merge, or was killed; its last stop "
                                 "was not confirmed by then");
    }

    void CountNote(const RunFolder& run, const std::string& note) {
        const auto known = std::find_if(m_notes.begin(), m_notes.end(),
                                        [&](const Note& other) { return other.text == note; });
        if (known == m_notes.end())
            m_notes.push_back({note, {run.name, 1}});
        else
            ++known->runs.count;
    }

    void CountDifferences(const RunFolder& run) {
        const RunFacts& facts = run.facts;
        m_otherMacTypes.AddIf(facts.macType != m_merged.macType, run);
        m_otherCountryCodes.AddIf(facts.countryCode != m_merged.countryCode, run);
        m_hasOtherFirmware = m_hasOtherFirmware || facts.firmware != m_merged.firmware;
        m_otherClients.AddIf(facts.clientSha256 != m_merged.clientSha256, run);
        const RunOptions& options = facts.options;
        m_otherFirstCommands.AddIf(options.firstCommand != m_firstCommand, run);
        if (options.firstCommand.empty() || options.firstCommandAccepted)
            return;
        m_refusedCommands.AddIf(true, run);
        m_merged.options.firstCommand = options.firstCommand;
        m_merged.options.firstCommandAccepted = false;
    }

    /// Many runs may say the same.
    void AddNotes() {
        for (const Note& note : m_notes)
            m_merged.AddNote(note.text + note.runs.Named());
    }

    void NoteDifferences() {
        AddDifference(m_otherMacTypes, "had another MAC type than that of the first lines");
        AddDifference(m_otherCountryCodes, "had another country code than that of the first lines");
        AddDifference(m_otherClients, "were made with another client than that of the first lines");
        AddDifference(m_otherFirstCommands,
                      "had another first command than that of the first lines");
        AddDifference(m_refusedCommands, "had a first command that the daemon did not accept");
    }

    void AddDifference(const Runs& runs, const std::string& what) {
        if (runs.count != 0)
            m_merged.AddNote(std::to_string(runs.count) + " of the " +
                             std::to_string(m_merged.sources.size()) + " runs " + what +
                             runs.Named());
    }

    void NoteFirmware() {
        if (!m_hasOtherFirmware)
            return;
        m_merged.firmware.reset();
        m_merged.AddNote("the runs were not all measured with the same firmware");
    }

    void AddUnused(const ChunkChoice::Unused& unused) {
        const RunFolder& run = m_runs[unused.run];
        CountMissedStop(run);
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
        Runs runs;
    };
    std::vector<Note> m_notes;
    Runs m_otherMacTypes;
    Runs m_otherCountryCodes;
    Runs m_otherClients;
    bool m_hasOtherFirmware = false;
    /// That of the first lines; the whole may have a refused one.
    std::vector<std::string> m_firstCommand;
    Runs m_otherFirstCommands;
    Runs m_refusedCommands;
};

} // namespace

RunFacts MergedFacts(std::span<const ManifestChunk> chunks, std::span<const RunFolder> runs,
                     const ChunkChoice& choice) {
    return FactsMerger(chunks, runs, choice).Merge();
}

} // namespace Bench
