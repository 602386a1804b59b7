#pragma once

#include "Tools/SarvexTool/Bench/History/Database.h"

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace Bench {

/// The statements that bring a database from one version to the next.
using Migration = std::vector<std::string>;

/// The version that this program reads and writes. What another program may read is described in
/// docs/history.md.
std::int64_t NewestVersion();

/// The version of the history in the database; 0 where there is no table yet. Throws StoreError for
/// a database of a newer version and for one that holds tables of something else: neither is ever
/// changed.
std::int64_t VersionOf(Database& database);

/// Brings the database to the newest version, each step in a write transaction of its own. Throws
/// as VersionOf does. Not to be called inside a transaction.
void Migrate(Database& database);

/// The same with other steps: the first leads to version 1.
void MigrateWith(Database& database, std::span<const Migration> migrations);

/// The steps to the newest version, of which the first leads to version 1. A step that was in a
/// release is never changed.
std::vector<Migration> AllMigrations(const Database& database);

} // namespace Bench
