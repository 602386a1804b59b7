// Property: whatever the files of a run hold, they are read without a crash. What is read of a
// journal or of a log of exchanges is the same when the torn rest is cut off, and comes back when
// it is written again; the lines of a journal follow one another, and so do the places of their
// rows. Facts of a run come back when they are written again. What cannot be read has a reason, and
// a line where the file has lines.
//
// Input: three groups: the journal, the log of exchanges, the facts.

#include "Tools/SarvexTool/Bench/Files/BadFile.h"
#include "Tools/SarvexTool/Bench/Files/ExchangeLog.h"
#include "Tools/SarvexTool/Bench/Files/Journal.h"
#include "Tools/SarvexTool/Bench/Files/RunFacts.h"
#include "fuzz/Support/Check.h"
#include "fuzz/Support/Input.h"

#include <sstream>
#include <string>
#include <vector>

namespace {

/// What there is to read of a file, and where it ends.
template <typename Entry, typename Reader>
std::vector<Entry> Read(const std::string& bytes, std::uint64_t& end) {
    std::istringstream stream(bytes);
    Reader reader(stream, "file");
    std::vector<Entry> entries;
    for (Entry entry; reader.Read(entry);)
        entries.push_back(entry);
    end = reader.End();
    return entries;
}

template <typename Entry, typename Reader>
std::vector<Entry> CheckLines(const std::string& bytes) {
    std::uint64_t end = 0;
    std::vector<Entry> entries;
    try {
        entries = Read<Entry, Reader>(bytes, end);
    } catch (const Bench::BadInput& bad) {
        Check(bad.Problems().at(0).line > 0 && !bad.Problems().at(0).text.empty(),
              "a line that is none has its number and a reason");
        return {};
    }
    Check(end <= bytes.size() && (end == 0 || bytes[end - 1] == '\n'), "whole lines are read");
    std::uint64_t cutEnd = 0;
    const std::string cut = bytes.substr(0, end);
    const std::vector<Entry> again = Read<Entry, Reader>(cut, cutEnd);
    Check(again == entries, "what is read is the same without the torn rest");
    CheckEqual(cutEnd, end, "nothing of what is left is torn");
    std::string written;
    for (const Entry& entry : entries)
        written += Bench::LineOf(entry);
    const std::vector<Entry> rewritten = Read<Entry, Reader>(written, end);
    Check(rewritten == entries, "what is written comes back");
    CheckEqual(end, written.size(), "what is written is whole");
    return entries;
}

void CheckJournal(const std::string& bytes) {
    Bench::LineNumber line = 1;
    std::uint64_t csvEnd = 0;
    for (const auto& entry : CheckLines<Bench::JournalEntry, Bench::JournalReader>(bytes)) {
        CheckEqual(entry.line, ++line, "a line follows the one before");
        Check(entry.csvEnd > csvEnd, "a row comes after the one before");
        csvEnd = entry.csvEnd;
    }
}

void CheckFacts(const std::string& text) {
    try {
        const Bench::RunFacts facts = Bench::ParseRunFacts(text, "run.json");
        Check(Bench::ParseRunFacts(Bench::ToJsonText(facts), "run.json") == facts,
              "facts come back");
    } catch (const Bench::BadInput& bad) {
        Check(!bad.Problems().at(0).text.empty(), "what cannot be read has a reason");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Parts groups(ToText(data, size), GroupSeparator);
    CheckJournal(groups[0]);
    CheckLines<Bench::LoggedExchange, Bench::ExchangeReader>(groups[1]);
    CheckFacts(groups[2]);
    return 0;
}
