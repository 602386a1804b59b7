#pragma once

#include "Tools/SarvexTool/Bench/Commands/Options.h"

#include <optional>
#include <string>

namespace Bench {

/// What the options of run have been given, as text.
struct RunArguments {
    std::optional<std::string> file;
    std::optional<std::string> resume;
    std::optional<std::string> out;
    std::string daemon = "127.0.0.1";
    std::optional<std::string> client;
    std::optional<std::string> limits;
    std::optional<std::string> segment;
    std::string answerTimeout = "60";
    std::string retries = "2";
    std::string wait = "300";
    std::string stopTimeout = "10";
    std::string progress = "text";
    std::optional<std::string> bench;
    std::optional<std::string> device;
    std::optional<std::string> attempt;
    std::optional<std::string> firmware;
    std::optional<std::string> note;
    std::optional<std::string> store;
    bool keep = false;
    bool failFast = false;
    bool force = false;
};

/// Adds the options. The arguments live as long as the app.
void AddRunOptions(Options app, RunArguments& arguments);

} // namespace Bench
