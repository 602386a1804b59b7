#pragma once

#include "Tools/SarvexTool/Bench/Core/Measurements.h"
#include "Tools/SarvexTool/Bench/Core/Settings.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Bench {

/// How a kept run was judged when it was run or kept.
enum class KeptVerdict : std::uint8_t { Pass, Fail, NotJudged };

/// "pass", "fail" or "not judged".
const char* NameOf(KeptVerdict verdict);

/// The verdict of that name; nothing for any other text.
std::optional<KeptVerdict> KeptVerdictNamed(std::string_view name);

/// The first digits of a run's hash, by which it is called.
std::string ShortHash(const std::string& hash);

/// What is told of a kept run. Texts may hold any bytes; moments are in seconds since 1970, UTC.
struct KeptFacts {
    /// Of the run's files: 64 hexadecimal digits in small letters, which it is known by.
    std::string hash;
    std::int64_t keptAt = 0;
    std::int64_t measuredAt = 0;
    /// The test file's name without folders; of a result without a run directory, its folder's.
    std::string name;
    /// In 64 hexadecimal digits.
    std::optional<std::string> testFileSha256;
    /// Of a merged run only what all its parts share.
    std::optional<std::string> bench;
    std::optional<std::string> device;
    std::optional<std::string> firmware;
    std::optional<std::string> note;
    std::optional<std::string> user;
    std::optional<std::string> host;
    /// HOST:PORT
    std::optional<std::string> daemon;
    std::optional<std::int32_t> macType;
    std::optional<std::string> countryCode;
    /// As in the run's facts: "complete", or why it ended.
    std::optional<std::string> outcome;
    KeptVerdict verdict = KeptVerdict::NotJudged;
    std::uint64_t lines = 0;
    std::uint64_t measurements = 0;
    /// Those with a power.
    std::uint64_t measured = 0;
    /// Where its lines were measured: at least one place, each once. The place of one is its
    /// number.
    std::vector<RunPlace> parts;

    bool operator==(const KeptFacts&) const = default;
};

/// A file of a kept run.
struct KeptFile {
    /// Without a folder, as "result.csv".
    std::string name;
    std::uint64_t size = 0;
    /// Of its bytes, in 64 hexadecimal digits.
    std::string sha256;

    bool operator==(const KeptFile&) const = default;
};

/// A file with its bytes.
struct KeptContent {
    std::string name;
    std::string bytes;

    bool operator==(const KeptContent&) const = default;
};

/// A name for a run that others are held against.
struct KeptBaseline {
    std::string name;
    /// Of the run.
    std::string hash;

    bool operator==(const KeptBaseline&) const = default;
};

/// How the bench is called of runs of which nothing tells it.
inline constexpr const char* UnknownBench = "unknown";

/// Which runs are meant: those of which all is so that is asked for.
struct RunFilter {
    /// Measured then or later.
    std::optional<std::int64_t> since;
    /// Measured before then.
    std::optional<std::int64_t> before;
    /// Of a merged run, that of a part. UnknownBench means those without any, too.
    std::optional<std::string> bench;
    std::optional<std::string> device;
    std::optional<std::string> firmware;
    /// The run's name.
    std::optional<std::string> file;
    std::optional<KeptVerdict> verdict;

    bool operator==(const RunFilter&) const = default;
};

/// A measurement of a kept run.
struct KeptPower {
    /// The place among the runs that the powers are of.
    std::uint32_t run = 0;
    /// The place in KeptFacts::parts.
    std::uint32_t part = 0;
    /// The place among the configurations.
    std::uint32_t configuration = 0;
    Chain chain = Chain::A;
    /// In dBm. Nothing where it was not measured.
    std::optional<double> power;

    bool operator==(const KeptPower&) const = default;
};

/// What kept powers are of. The texts belong to a pool.
struct KeptHistory {
    /// In the order of the times at which they were measured.
    std::vector<KeptFacts> runs;
    /// All that were ever kept, of these runs or not.
    std::vector<Settings> configurations;
};

} // namespace Bench
