#pragma once

#include "Tools/SarvexTool/Bench/History/StoreError.h"
#include "Tools/SarvexTool/Bench/History/StoreName.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace Bench {

/// Bytes that are no text.
struct Blob {
    std::string bytes;

    bool operator==(const Blob&) const = default;
};

/// What a column can hold; the first is NULL. A text is UTF-8 without the NUL character.
using Value = std::variant<std::monostate, std::int64_t, double, std::string, Blob>;

/// One row of what was asked for, while it is taken. A column has the type that it is asked as.
class ResultRow {
public:
    virtual ~ResultRow() = default;

    virtual bool IsNull(std::size_t column) const = 0;
    /// 0 for NULL.
    virtual std::int64_t Integer(std::size_t column) const = 0;
    /// 0 for NULL.
    virtual double Real(std::size_t column) const = 0;
    /// Empty for NULL. Lives until the next row is taken.
    virtual std::string_view Text(std::size_t column) const = 0;
    /// Of a BYTEA column; otherwise as Text.
    virtual std::string_view Bytes(std::size_t column) const = 0;
};

/// Whoever reads wants a store that is there; for whoever writes it is made.
enum class OpenFor : std::uint8_t { Reading, Writing };

/// A connection to a database. Parameters are $1, $2 and so on. All functions block, a write
/// transaction up to a minute when others write, and throw StoreError. Nothing is tried again. To
/// be used by one thread at a time. A transaction in which a statement has failed can only be
/// rolled back.
class Database {
public:
    using Values = std::span<const Value>;
    using TakeRow = std::function<void(const ResultRow&)>;

    virtual ~Database() = default;
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    /// As StoreName shows it, for messages.
    const std::string& Shown() const { return m_shown; }

    /// Runs one statement that has no result.
    virtual void Run(std::string_view statement, Values parameters) = 0;
    void Run(std::string_view statement) { Run(statement, {}); }

    /// Calls take for each row. While it runs it must not use the database; what it throws ends the
    /// query.
    virtual void Query(std::string_view statement, Values parameters, const TakeRow& take) = 0;
    void Query(std::string_view statement, const TakeRow& take) { Query(statement, {}, take); }

    /// Until the transaction's end, everything read is of one moment.
    virtual void BeginRead() = 0;
    /// Alone among those who write.
    virtual void BeginWrite() = 0;
    virtual void Commit() = 0;
    virtual void Rollback() noexcept = 0;

    /// The names of the tables that are there.
    virtual std::vector<std::string> Tables() = 0;
    /// What ends the CREATE TABLE of a table that is kept in the order of its key.
    virtual std::string_view TableEnd() const = 0;
    /// What the database itself finds wrong with its content, in words; empty when nothing is.
    virtual std::vector<std::string> IntegrityProblems() = 0;

protected:
    explicit Database(std::string shown) : m_shown(std::move(shown)) {}

    [[noreturn]] void Fail(const std::string& problem) const { throw StoreError(m_shown, problem); }

    /// Fails for a text that is no UTF-8 or has a NUL character, which not every database keeps.
    void CheckTexts(Values parameters) const;

private:
    std::string m_shown;
};

/// A transaction that is taken back unless it is committed.
class Transaction {
public:
    Transaction(Database& database, OpenFor purpose);
    ~Transaction();
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;

    /// To be called once, at the end.
    void Commit();

private:
    Database& m_database;
    bool m_isOpen = true;
};

/// Throws StoreError, for a store to read that is not there StoreMissing. A file is made with no
/// table in it.
std::unique_ptr<Database> OpenDatabase(const StoreName& name, OpenFor purpose);

} // namespace Bench
