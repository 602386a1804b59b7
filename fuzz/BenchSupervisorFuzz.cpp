// Property: whatever happens to a run, in whatever order, its supervisor keeps its promises: those
// that tests/Tools/SarvexTool/Bench/Supervision/Support/SimulatedRun.h names.
//
// Input: each byte chooses what happens next; after the last one it is always the first that can.

#include "fuzz/Support/Check.h"
#include "tests/Tools/SarvexTool/Bench/Supervision/Support/SimulatedRun.h"

#include <cstdint>
#include <stdexcept>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::uint8_t* const end = data + size;
    Bench::SimulatedRun run([&data, end](std::size_t count) -> std::size_t {
        return data == end ? 0 : *data++ % count;
    });
    try {
        run.Run();
    } catch (const std::logic_error& broken) {
        FailProperty("the supervisor keeps its promises", broken.what());
    }
    return 0;
}
