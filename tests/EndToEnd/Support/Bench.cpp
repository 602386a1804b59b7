#include "tests/EndToEnd/Support/Bench.h"

namespace EndToEnd {

Bench::Bench() {
    AddProgram("SarvexToolClient", "SarvexToolClient");
}

void Bench::AddProgram(const std::string& name, const std::string& copyName) const {
    std::filesystem::copy_file(TestProgramDirectory() + "/" + ExecutableName(name),
                               Path(ExecutableName(copyName)));
}

ProcessResult Bench::RunClient(const std::vector<std::string>& arguments) const {
    return Run(ClientPath(), arguments, Directory());
}

} // namespace EndToEnd
