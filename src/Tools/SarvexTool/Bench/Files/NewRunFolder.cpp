#include "Tools/SarvexTool/Bench/Files/NewRunFolder.h"

#include "Tools/SarvexTool/Bench/Files/BadFile.h"
#include "Tools/SarvexTool/Bench/Files/FileNames.h"
#include "Tools/SarvexTool/Bench/Files/UtcTime.h"

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <system_error>

namespace Bench {

namespace fs = std::filesystem;

std::string NewRunName(const std::string& testFile, std::chrono::system_clock::time_point now) {
    constexpr std::size_t toTheSecond = 19;
    std::string time = UtcTime(now).substr(0, toTheSecond);
    std::erase_if(time, [](char character) { return character == '-' || character == ':'; });
    std::replace(time.begin(), time.end(), 'T', '-');
    const std::string name = "runs/" + NameOf(PathOf(testFile).stem()) + "-" + time;
    std::string free = name;
    // Where it cannot be told whether it is there, what makes it tells why.
    std::error_code ignored;
    for (int count = 2; fs::exists(fs::symlink_status(PathOf(free), ignored)); ++count)
        free = name + "-" + std::to_string(count);
    return free;
}

RunDirectory CreateUnderNewName(const std::function<std::string()>& newName,
                                const std::function<RunDirectory(const std::string&)>& create) {
    constexpr int most = 100;
    for (int tries = 1;; ++tries) {
        const std::string name = newName();
        try {
            return create(name);
        } catch (const BadFile& bad) {
            // Only of the folder, only where it is there by now, and not where no lock is ever
            // given.
            if (bad.File() != name || newName() == name || tries == most)
                throw;
        }
    }
}

} // namespace Bench
