#include "tests/EndToEnd/Support/TaskList.h"

namespace EndToEnd {

bool PrepareTaskList(const Bench& bench) {
    bench.AddProgram("faketasklist", "tasklist");
    bench.Write("tasklist.txt",
                "INFO: No tasks are running which match the specified criteria.\r\n");
    return true;
}

void ShowInTaskList(const Bench& bench, const std::string& name) {
    bench.Write("tasklist.txt", name + ".exe                  4711 Console    1     9,000 K\r\n");
}

void EndDaemon(const Bench& bench, const std::string&) {
    // The daemon is no child of this process, so there is no handle to end it by.
    bench.RunClient({"-exit"});
}

} // namespace EndToEnd
