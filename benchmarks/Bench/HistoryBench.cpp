// Keeps runs of 1,000 measurements in a store in a file, each beside a plain bulk insert of as many
// rows: one prepared statement into one table of the same columns, one transaction, synced to the
// disk in the same way. Then asks the program for the list and for the trend of all of them. Prints
// a row for each, and one for the file's size; all of that for results with all columns of
// settings, and with the five of the example in docs/history.md. Ends with 1 when a goal is missed.
//
// usage: history_bench BENCH [RUNS]

#include "Tools/SarvexTool/Bench/Files/KeptFiles.h"
#include "Tools/SarvexTool/Bench/History/Database.h"
#include "Tools/SarvexTool/Bench/History/Migrations.h"
#include "Tools/SarvexTool/Bench/History/Store.h"
#include "benchmarks/Client/TimedProcess.h"

#include <sqlite3.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using Path = std::filesystem::path;

constexpr int lineCount = 500; // With two chains each.
constexpr int stationCount = 8;
constexpr std::int64_t firstMoment = 1'772'431'200;
constexpr std::int64_t secondsBetween = 3'600;

double MillisecondsOf(const std::function<void()>& action) {
    const auto start = std::chrono::steady_clock::now();
    action();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start)
        .count();
}

double Median(std::vector<double> values) {
    std::nth_element(values.begin(),
                     values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2), values.end());
    return values[values.size() / 2];
}

/// The settings of a result. A line is what is before its channel, between that and its rate, and
/// after it.
struct Columns {
    const char* words;
    const char* header;
    const char* before;
    const char* between;
    const char* after;
};

constexpr std::array allColumns{
    Columns{
        "all columns",
        "Band,Chains,Bandwidth,Channel,Bandwidth Mode,Rate,Mode,Resource Unit,Specific Resource "
        "unit,Large RU Size",
        "6,AB,20,", ",HE,MCS", ",SISO,242,0,none"},
    Columns{"5 columns", "Band,Chains,Bandwidth,Channel,Rate", "5,AB,20,", ",MCS", ""}};

/// A result of the client; its powers differ from run to run.
void WriteRun(const Path& folder, const Columns& columns, std::mt19937& numbers) {
    std::normal_distribution<double> deviation(0, 0.3);
    std::ofstream table(folder / "result.csv");
    table << columns.header << ",Chain-A Power, Chain B Power\n";
    for (int line = 0; line < lineCount; ++line) {
        char powers[64];
        std::snprintf(powers, sizeof powers, "%.2f,%.2f", 15 + deviation(numbers),
                      14.75 + deviation(numbers));
        table << columns.before << line % 100 + 1 << columns.between << line / 100 << columns.after
              << "," << powers << "\n";
    }
}

/// The connection of the plain inserts, with the table of the measurements alone.
class PlainStore {
public:
    explicit PlainStore(const Path& file) {
        Require(sqlite3_open(file.string().c_str(), &m_database));
        Run("PRAGMA synchronous=FULL");
        Run("CREATE TABLE measurements(run BIGINT, line BIGINT, chain TEXT, configuration BIGINT, "
            "part BIGINT, power DOUBLE PRECISION, reason TEXT, PRIMARY KEY(run, line, chain)) "
            "WITHOUT ROWID");
        Require(sqlite3_prepare_v2(m_database,
                                   "INSERT INTO measurements VALUES (?, ?, ?, ?, 0, ?, NULL)", -1,
                                   &m_insert, nullptr));
    }
    ~PlainStore() {
        sqlite3_finalize(m_insert);
        sqlite3_close(m_database);
    }
    PlainStore(const PlainStore&) = delete;
    PlainStore& operator=(const PlainStore&) = delete;

    void Add(int run, const Bench::RunResult& result) {
        Run("BEGIN IMMEDIATE");
        for (const Bench::Measurement& measurement : result.measurements) {
            sqlite3_bind_int64(m_insert, 1, run);
            sqlite3_bind_int64(m_insert, 2, result.LineOf(measurement));
            sqlite3_bind_text(m_insert, 3, Bench::NameOf(measurement.chain), 1, SQLITE_STATIC);
            sqlite3_bind_int64(m_insert, 4, measurement.configuration);
            sqlite3_bind_double(m_insert, 5, measurement.power->ToDouble());
            if (sqlite3_step(m_insert) != SQLITE_DONE)
                throw std::runtime_error(sqlite3_errmsg(m_database));
            sqlite3_reset(m_insert);
        }
        Run("COMMIT");
    }

private:
    void Run(const char* statement) {
        Require(sqlite3_exec(m_database, statement, nullptr, nullptr, nullptr));
    }
    void Require(int code) const {
        if (code != SQLITE_OK)
            throw std::runtime_error(sqlite3_errmsg(m_database));
    }

    sqlite3* m_database = nullptr;
    sqlite3_stmt* m_insert = nullptr;
};

/// A folder that goes with the object.
class Folder {
public:
    Folder() : m_path(std::filesystem::temp_directory_path() / "sarvex-history-bench") {
        std::filesystem::remove_all(m_path);
        std::filesystem::create_directories(m_path / "run");
    }
    ~Folder() { std::filesystem::remove_all(m_path); }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    Path operator/(const char* name) const { return m_path / name; }

private:
    Path m_path;
};

Bench::Store OpenStore(const Path& file) {
    auto database =
        Bench::OpenDatabase(Bench::StoreName::Parse(file.string()), Bench::OpenFor::Writing);
    Bench::Migrate(*database);
    return Bench::Store(std::move(database));
}

/// Whether the goal is met, which the ratio is not to be above.
bool PrintRow(const std::string& what, const std::string& figure, double ratio, const char* of,
              double goal) {
    std::printf("| %-38s | %13s | %6.2f x %-20s | <= %-4g |\n", what.c_str(), figure.c_str(), ratio,
                of, goal);
    return ratio <= goal;
}

std::string Figure(double value, const char* unit) {
    char text[32];
    std::snprintf(text, sizeof text, "%.2f %s", value, unit);
    return text;
}

bool Keep(const Folder& folder, const Columns& columns, int runs) {
    std::mt19937 numbers(15);
    Bench::Store store = OpenStore(folder / "history.db");
    PlainStore plain(folder / "plain.db");
    std::vector<double> kept;
    std::vector<double> inserted;
    double csvBytes = 0;
    for (int run = 0; run < runs; ++run) {
        WriteRun(folder / "run", columns, numbers);
        csvBytes += static_cast<double>(std::filesystem::file_size(folder / "run" / "result.csv"));
        Bench::TextPool texts;
        Bench::KeepOptions options;
        options.bench = "B" + std::to_string(run % stationCount);
        options.device = "DUT-7";
        options.measuredAt = firstMoment + run * secondsBetween;
        const Bench::RunToKeep toKeep =
            Bench::ReadRunToKeep((folder / "run").string(), options, texts);
        if (toKeep.result.measurements.size() != 2 * lineCount)
            throw std::runtime_error("a run has not the measurements that it should have");
        kept.push_back(MillisecondsOf([&] { store.Add(toKeep, firstMoment); }));
        inserted.push_back(MillisecondsOf([&] { plain.Add(run, toKeep.result); }));
    }
    constexpr double mostInserts = 3;
    constexpr double mostFiles = 2;
    constexpr double megabyte = 1e6;
    const auto bytes = static_cast<double>(std::filesystem::file_size(folder / "history.db"));
    const bool isFast =
        PrintRow("keeping 1,000 powers, " + std::string(columns.words), Figure(Median(kept), "ms"),
                 Median(kept) / Median(inserted), "a plain insert", mostInserts);
    return PrintRow("  the file of all", Figure(bytes / megabyte, "MB"), bytes / csvBytes,
                    "the CSV files", mostFiles) &&
           isFast;
}

/// The processor time of the whole program.
bool Ask(const char* what, const std::vector<std::string>& words, double goal) {
    constexpr int rounds = 9;
    constexpr int found = 1;
    std::vector<double> times;
    for (int round = 0; round < rounds; ++round) {
        const Bench::ProcessFigures figures = Bench::FiguresOf({words, ""});
        if (figures.exitCode < 0 || figures.exitCode > found)
            throw std::runtime_error(std::string(what) + " failed");
        times.push_back(figures.processorMilliseconds);
    }
    return PrintRow(what, Figure(Median(times), "ms"), Median(times) / goal, "the goal", 1);
}

bool AreGoalsMet(const std::string& program, const Columns& columns, int runs) {
    constexpr double listGoal = 50;
    constexpr double trendGoal = 500;
    const Folder folder;
    const std::string store = (folder / "history.db").string();
    const bool isKept = Keep(folder, columns, runs);
    const bool isListed =
        Ask("  the list of all", {program, "history", "list", "--store", store}, listGoal);
    const bool isFollowed =
        Ask("  the trend of all", {program, "history", "trend", "--store", store}, trendGoal);
    return isKept && isListed && isFollowed;
}

} // namespace

int main(int argc, char* argv[]) {
    if (argc < 2) {
        std::fprintf(stderr, "usage: history_bench BENCH [RUNS]\n");
        return 2;
    }
    const int runs = argc > 2 ? std::stoi(argv[2]) : 1000;
    bool areMet = true;
    for (const Columns& columns : allColumns)
        areMet = AreGoalsMet(argv[1], columns, runs) && areMet;
    return areMet ? 0 : 1;
}
