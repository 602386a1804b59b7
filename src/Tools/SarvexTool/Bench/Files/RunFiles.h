#pragma once

#include <string>

namespace Bench {

/// What the folder of a run holds; all names are in UTF-8.
struct RunFiles {
    explicit RunFiles(const std::string& folder) : directory(folder) {}

    std::string directory;
    /// A copy of the test file, byte for byte.
    std::string testFile = directory + "/test-file.csv";
    std::string result = directory + "/result.csv";
    /// Empty until the run is complete.
    std::string tree = directory + "/result.xml";
    std::string facts = directory + "/run.json";
    std::string exchanges = directory + "/exchanges.jsonl";
    std::string journal = directory + "/journal.jsonl";
    /// What the clients printed.
    std::string console = directory + "/client.log";
    /// Locked while a run lasts.
    std::string lock = directory + "/run.lock";
    /// The clients' private folder, while a run lasts.
    std::string client = directory + "/client";
};

} // namespace Bench
