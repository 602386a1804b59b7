#pragma once

#include "Tools/SarvexTool/Bench/Core/Kept.h"
#include "Tools/SarvexTool/Bench/Files/KeptFiles.h"
#include "Tools/SarvexTool/Bench/History/Database.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace Bench {

/// There is nothing in the store that is meant, or more than one thing. The text says what, without
/// an end mark.
class NotKept : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// What was asked for would change what is kept, or be of two meanings.
class KeptOtherwise : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// What a check has found.
struct StoreCheck {
    std::size_t runs = 0;
    std::size_t files = 0;
    /// In sentences without an end mark.
    std::vector<std::string> problems;
};

/// The runs that are kept in a database. Each function that changes something is one transaction:
/// it is done whole or not at all, whatever becomes of the program. Each that reads sees one state.
/// All throw StoreError for what fails in the database.
class Store {
public:
    /// A database of this version's tables, which Migrate has made.
    explicit Store(std::unique_ptr<Database> database);

    /// Keeps a run at a moment, in seconds since 1970, UTC. False when it is kept already. Throws
    /// KeptOtherwise when it is, and other things are told of it, and when another state of its run
    /// directory is kept: one with the same host, daemon, test file and moment of the start.
    bool Add(const RunToKeep& run, std::int64_t now);

    /// Throws StoreError where a run cannot be added, as by a user who may only read.
    void RequireWritable();

    /// In the order of the times at which they were measured.
    std::vector<KeptFacts> List(const RunFilter& filter);

    /// The run that a baseline of that name is, or whose hash begins with these digits, at least
    /// FewestDigits. Throws NotKept.
    KeptFacts Find(const std::string& run);

    static constexpr std::size_t FewestDigits = 4;

    /// Of a run of that hash, in the byte order of their names.
    std::vector<KeptFile> ListFiles(const std::string& hash);

    /// The files with their bytes, which are those that were kept: throws StoreError for others.
    std::vector<KeptContent> FilesOf(const std::string& hash);

    /// Throws KeptOtherwise for a run that is a baseline, and NotKept.
    void RequireNoBaseline(const std::string& hash);

    /// Removes a run; a baseline only with its name, when that is wanted. Throws KeptOtherwise, and
    /// NotKept when there is no such run any more.
    void Remove(const std::string& hash, bool withBaselines);

    /// Names a run of that hash as a baseline, instead of the one that had the name. Throws
    /// KeptOtherwise for a name that could be the digits of a hash or that of a file, and NotKept.
    void SetBaseline(const std::string& name, const std::string& hash);

    /// Takes the name from the run that has it; the run stays.
    void RemoveBaseline(const std::string& name);

    /// In the byte order of their names.
    std::vector<KeptBaseline> Baselines();

    /// The measurements of the runs that the filter means, of a merged run only those of the parts
    /// that it means. Begin is called once, before the first one. The texts are kept by the pool.
    void ReadPowers(const RunFilter& filter, TextPool& texts,
                    const std::function<void(const KeptHistory&)>& begin,
                    const std::function<void(const KeptPower&)>& take);

    /// Whether the database is whole, each file what it was, and each run's rows those of its
    /// files. Tell is called with each run before it is looked at.
    StoreCheck Check();

private:
    std::unique_ptr<Database> m_database;
};

} // namespace Bench
