#include "tests/EndToEnd/Support/Posix/ProcessUse.h"

#include "tests/Support/Files.h"

#include <unistd.h>

#include <filesystem>
#include <sstream>
#include <string>
#include <system_error>

namespace EndToEnd {

namespace fs = std::filesystem;

namespace {

std::uint64_t ResidentBytes(const std::string& folder) {
    std::istringstream pages(TestSupport::ReadBytes(folder + "/statm"));
    std::uint64_t all = 0;
    std::uint64_t resident = 0;
    pages >> all >> resident;
    return resident * static_cast<std::uint64_t>(::sysconf(_SC_PAGESIZE));
}

void CountDescriptors(const std::string& folder, ProcessUse& use) {
    // Any of them may be closed while they are looked at, and the process may end.
    std::error_code gone;
    for (fs::directory_iterator entry(folder + "/fd", gone), end; !gone && entry != end;
         entry.increment(gone)) {
        std::error_code closed;
        const fs::path target = fs::read_symlink(entry->path(), closed);
        if (closed)
            continue;
        ++use.descriptors;
        if (target.string().starts_with("socket:"))
            ++use.sockets;
    }
}

} // namespace

std::optional<ProcessUse> UseOf(std::uint64_t process) {
    const std::string number = std::to_string(process);
    const std::string folder = "/proc/" + number;
    ProcessUse use;
    use.residentBytes = ResidentBytes(folder);
    if (use.residentBytes == 0)
        return std::nullopt;
    CountDescriptors(folder, use);
    use.hasChildren = !TestSupport::ReadBytes(folder + "/task/" + number + "/children").empty();
    return use;
}

} // namespace EndToEnd
