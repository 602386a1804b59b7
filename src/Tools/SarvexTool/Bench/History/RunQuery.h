#pragma once

#include "Tools/SarvexTool/Bench/Core/Kept.h"
#include "Tools/SarvexTool/Bench/History/Database.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace Bench {

/// Which rows of the table of runs are meant: what is after WHERE, empty for all, and its values.
struct RunCondition {
    std::string text;
    std::vector<Value> values;
};

RunCondition RunsOf(const RunFilter& filter);
RunCondition RunWith(std::int64_t number);
/// Hexadecimal digits in small letters.
RunCondition RunsBeginningWith(const std::string& digits);
RunCondition BaselineNamed(const std::string& name);

/// A kept run and its number in the database.
struct NumberedRun {
    std::int64_t number = 0;
    KeptFacts facts;
};

/// In the order of the times at which they were measured.
std::vector<NumberedRun> QueryRuns(Database& database, const RunCondition& condition);

/// In the byte order of the names.
std::vector<KeptFile> QueryFileNames(Database& database, std::int64_t number);

/// A kept file that is not what it was.
class ChangedFile : public StoreError {
public:
    using StoreError::StoreError;
};

/// The files of a run in the byte order of their names. Throws ChangedFile.
std::vector<KeptContent> QueryFiles(Database& database, std::int64_t number);

/// As Store::ReadPowers, in a transaction of the caller's.
void QueryPowers(Database& database, const RunFilter& filter, TextPool& texts,
                 const std::function<void(const KeptHistory&)>& begin,
                 const std::function<void(const KeptPower&)>& take);

} // namespace Bench
