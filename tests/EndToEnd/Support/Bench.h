#pragma once

#include "tests/EndToEnd/Support/Process.h"
#include "tests/Support/Files.h"

#include <string>
#include <vector>

namespace EndToEnd {

/// A directory that holds a copy of the real client, and whatever a test puts beside it. Programs
/// run in it as their working directory.
class Bench {
public:
    Bench();

    /// Writes the client's port file.
    void SetPort(const std::string& content) const { Write("Socket.cfg", content); }

    void Write(const std::string& name, const std::string& content) const {
        TestSupport::WriteBytes(Path(name), content);
    }
    std::string Read(const std::string& name) const { return TestSupport::ReadBytes(Path(name)); }
    std::string Path(const std::string& name) const { return m_directory.Path(name); }
    std::string Directory() const { return m_directory.Path(); }

    /// Puts a copy of a program of the build beside the client, under its own or another name.
    void AddProgram(const std::string& name, const std::string& copyName) const;

    /// Runs the client to its end.
    ProcessResult RunClient(const std::vector<std::string>& arguments) const;

    std::string ClientPath() const { return Path(ExecutableName("SarvexToolClient")); }

private:
    TestSupport::TemporaryDirectory m_directory;
};

} // namespace EndToEnd
