#include "Tools/SarvexTool/Bench/Files/RunDirectory.h"

#include "Tools/SarvexTool/Bench/Files/FileNames.h"
#include "Tools/SarvexTool/Bench/Files/Input.h"
#include "Tools/SarvexTool/Bench/Files/Sha256.h"

#include <filesystem>
#include <fstream>
#include <system_error>
#include <utility>
#include <vector>

namespace Bench {

namespace {

namespace fs = std::filesystem;
using OSAL::DurableFile;

/// Copies a file byte for byte and returns its SHA-256.
std::string Copy(const std::string& source, const std::string& target) {
    DurableFile copy(target, DurableFile::Opening::New);
    Sha256 hash;
    ReadPieces(source, [&](std::string_view piece) {
        hash.Add(piece);
        copy.Append(piece);
    });
    copy.Sync();
    return hash.Finish();
}

/// All that a run leaves. The lock is nothing that could be lost.
std::vector<std::string> KeptFiles(const RunFiles& files) {
    return {files.testFile,  files.result,  files.tree,    files.facts,
            files.exchanges, files.journal, files.console, files.client};
}

void RemoveKept(const RunFiles& files) {
    std::error_code ignored;
    for (const std::string& name : KeptFiles(files))
        fs::remove(PathOf(name), ignored);
}

/// Not with too long a name: what is made there then tells why. Throws BadInput where it cannot be
/// told, for what is there is neither lost nor overwritten.
bool Exists(const std::string& name) {
    std::error_code error;
    const fs::file_status status = fs::symlink_status(PathOf(name), error);
    if (status.type() == fs::file_type::none && error != std::errc::filename_too_long)
        throw BadInput(name, "cannot be looked at: " + error.message());
    return fs::exists(status);
}

bool IsRegular(const std::string& name) {
    return fs::is_regular_file(fs::symlink_status(PathOf(name)));
}

bool IsBeginningOf(const std::string& whole, const std::string& name) {
    std::ifstream stream(PathOf(whole), std::ios::binary);
    bool isSame = true;
    ReadPieces(name, [&](std::string_view piece) {
        std::string expected(piece.size(), '\0');
        stream.read(expected.data(), static_cast<std::streamsize>(expected.size()));
        isSame = isSame && stream && expected == piece;
    });
    return isSame;
}

/// Whether a run has left this that was killed before its facts were written, so that it has sent
/// nothing and cannot be resumed. Nothing of it is missed: files without a byte, and a copy of the
/// test file, perhaps not of all of it.
bool HasNotBegun(const RunFiles& files, const std::string& testFile) {
    if (!Exists(files.lock) || Exists(files.facts) || Exists(files.console) || Exists(files.client))
        return false;
    for (const std::string& name : {files.result, files.tree, files.exchanges, files.journal}) {
        if (Exists(name) && !(IsRegular(name) && fs::is_empty(PathOf(name))))
            return false;
    }
    std::error_code ignored;
    return !Exists(files.testFile) ||
           (IsRegular(files.testFile) &&
            !fs::equivalent(PathOf(testFile), PathOf(files.testFile), ignored) &&
            IsBeginningOf(testFile, files.testFile));
}

void RequireUnused(const RunFiles& files, const std::string& testFile) {
    if (HasNotBegun(files, testFile))
        return;
    for (const std::string& name : KeptFiles(files)) {
        if (Exists(name))
            throw BadOutput(files.directory, "holds a run or results already (" +
                                                 NameOf(PathOf(name).filename()) +
                                                 "), and old results are never overwritten; name "
                                                 "another folder");
    }
}

/// Whether the folder was not there before.
bool MakeFolder(const std::string& directory) {
    std::error_code error;
    const bool isNew = fs::create_directories(PathOf(directory), error);
    if (error)
        throw BadOutput(directory, "cannot be made the folder of a run (" + error.message() + ")");
    return isNew;
}

/// Takes back what was made of a run that could not begin.
class Undo {
public:
    Undo(const RunFiles& files, bool isNewFolder) : m_files(files), m_isNewFolder(isNewFolder) {}
    ~Undo() {
        if (m_isDone)
            return;
        RemoveKept(m_files);
        std::error_code ignored;
        // On a system that removes no open file, the lock keeps the folder.
        fs::remove(PathOf(m_files.lock), ignored);
        if (m_isNewFolder)
            fs::remove(PathOf(m_files.directory), ignored);
    }
    Undo(const Undo&) = delete;
    Undo& operator=(const Undo&) = delete;

    void Forget() { m_isDone = true; }

private:
    const RunFiles& m_files;
    bool m_isNewFolder;
    bool m_isDone = false;
};

void SyncNames(const std::string& directory) {
    OSAL::SyncDirectory(directory);
    OSAL::SyncDirectory(NameOf(fs::absolute(PathOf(directory)).parent_path()));
}

void RequireSameTestFile(const RunFiles& files, const RunTestFile& testFile) {
    if (HashOfFile(files.testFile) != testFile.sha256)
        throw BadInput(files.testFile, "is not the test file that the run began with; begin a new "
                                       "run");
    // A run may be resumed where its test file never was.
    if (fs::exists(PathOf(testFile.name)) && HashOfFile(testFile.name) != testFile.sha256)
        throw BadInput(testFile.name, "has changed since the run began; begin a new run");
}

void RequireThere(const std::string& name) {
    if (!Exists(name))
        throw BadInput(name, "is missing, and the run cannot go on without it; begin a new run");
}

/// The last entry of a journal, of line 0 where there is none; what follows it is cut off.
JournalEntry CutJournal(const std::string& name) {
    RequireThere(name);
    JournalEntry last;
    DurableFile journal(name, DurableFile::Opening::Existing);
    std::ifstream stream(PathOf(name), std::ios::binary);
    JournalReader reader(stream, name);
    while (reader.Read(last)) {
    }
    journal.Truncate(reader.End());
    journal.Sync();
    return last;
}

bool EndsWithLineEnd(const std::string& name, std::uint64_t size) {
    std::ifstream file(PathOf(name), std::ios::binary);
    file.seekg(static_cast<std::streamoff>(size) - 1);
    return file.get() == '\n';
}

/// A header without rows is cut off too: whether it is whole cannot be told.
DurableFile CutResult(const std::string& name, std::uint64_t size) {
    RequireThere(name);
    DurableFile result(name, DurableFile::Opening::Existing);
    if (result.Size() < size || (size > 0 && !EndsWithLineEnd(name, size)))
        throw BadInput(name, "does not hold the rows that the journal tells of; the file was "
                             "changed");
    result.Truncate(size);
    result.Sync();
    return result;
}

} // namespace

RunDirectory RunDirectory::Create(const std::string& directory, const std::string& testFile,
                                  RunFacts facts, const LockHolder& holder) {
    const RunFiles files(directory);
    RequireUnused(files, testFile);
    const bool isNewFolder = MakeFolder(directory);
    OSAL::FileLock lock = TakeLock(files.lock, directory, "the folder", holder);
    // Another run may have come and gone in between.
    RequireUnused(files, testFile);
    RemoveKept(files);
    Undo undo(files, isNewFolder);
    facts.testFile = {NameOf(fs::absolute(PathOf(testFile))), Copy(testFile, files.testFile)};
    DurableFile result(files.result, DurableFile::Opening::New);
    DurableFile journal(files.journal, DurableFile::Opening::New);
    for (const std::string& name : {files.tree, files.exchanges})
        const DurableFile empty(name, DurableFile::Opening::New);
    WriteRunFacts(files.facts, facts);
    SyncNames(directory);
    undo.Forget();
    return {files, std::move(lock), std::move(facts), std::move(result), std::move(journal), 0};
}

RunDirectory RunDirectory::Resume(const std::string& directory, const LockHolder& holder,
                                  std::optional<OSAL::FileLock> lock) {
    const RunFiles files(directory);
    if (!Exists(files.facts))
        throw BadInput(directory, "holds no run: run.json is missing");
    // A merged run stays one, and is left without a lock.
    if (ReadRunFacts(files.facts).isMerged)
        throw BadInput(directory, "is merged from other runs; resume those of them that are not "
                                  "complete, and merge them again");
    if (!lock)
        lock = Lock(directory, holder);
    RunFacts facts = ReadRunFacts(files.facts);
    RequireSameTestFile(files, facts.testFile);
    const JournalEntry last = CutJournal(files.journal);
    DurableFile result = CutResult(files.result, last.csvEnd);
    DurableFile journal(files.journal, DurableFile::Opening::Existing);
    return {files,    std::move(*lock), std::move(facts), std::move(result), std::move(journal),
            last.line};
}

OSAL::FileLock RunDirectory::Lock(const std::string& directory, const LockHolder& holder) {
    return TakeLock(RunFiles(directory).lock, directory, "the run", holder);
}

RunDirectory::RunDirectory(RunFiles files, OSAL::FileLock lock, RunFacts facts,
                           OSAL::DurableFile result, OSAL::DurableFile journal, LineNumber lastLine)
    : m_files(std::move(files)),
      m_lock(std::move(lock)),
      m_facts(std::move(facts)),
      m_result(std::move(result)),
      m_journal(std::move(journal)),
      m_lastLine(lastLine) {}

void RunDirectory::KeepHeader(std::string_view header) {
    m_result.Append(header);
    m_result.Sync();
}

void RunDirectory::KeepLine(const FinishedLine& line, const std::string& started, double seconds) {
    m_result.Append(line.row);
    m_result.Sync();
    m_journal.Append({line.line, line.outcome, m_result.Size(), started, seconds});
    m_lastLine = line.line;
}

void RunDirectory::KeepUnfinishedRow(std::string_view row) {
    m_result.Append(row);
    m_result.Sync();
}

} // namespace Bench
