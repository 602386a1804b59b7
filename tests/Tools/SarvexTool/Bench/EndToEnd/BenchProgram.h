#pragma once

#include "tests/EndToEnd/Support/Process.h"
#include "tests/Support/Files.h"

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace Bench {

/// A directory in which the real program runs.
class BenchProgram {
public:
    /// Names of files may hold any character, in UTF-8.
    void Write(const std::string& name, const std::string& content) const {
        std::ofstream(PathOf(name), std::ios::binary) << content;
    }
    std::string Read(const std::string& name) const {
        std::ifstream file(PathOf(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    std::size_t CountFiles() const {
        const std::filesystem::directory_iterator entries(m_directory.Path());
        return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
    }
    std::string Path(const std::string& name) const { return m_directory.Path(name); }

    EndToEnd::ProcessResult Run(const std::vector<std::string>& arguments,
                                const std::string& inputFile = "") const {
        const std::string program =
            EndToEnd::TestProgramDirectory() + "/" + EndToEnd::ExecutableName("SarvexToolBench");
        return RunProgram(program, arguments, inputFile);
    }

    EndToEnd::ProcessResult RunProgram(const std::string& program,
                                       const std::vector<std::string>& arguments,
                                       const std::string& inputFile = "") const {
        return EndToEnd::Process(program, arguments, m_directory.Path(),
                                 {.output = EndToEnd::Process::Output::Kept,
                                  .inputFile = inputFile.empty() ? "" : Path(inputFile),
                                  .areArgumentsUtf8 = true})
            .Wait();
    }

private:
    std::filesystem::path PathOf(const std::string& name) const {
        return std::filesystem::path(m_directory.Path()) /
               std::filesystem::path(std::u8string(name.begin(), name.end()));
    }

    TestSupport::TemporaryDirectory m_directory;
};

} // namespace Bench
