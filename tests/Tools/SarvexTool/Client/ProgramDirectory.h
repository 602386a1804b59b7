#pragma once

#include "tests/Modules/xFramework/OSAL/Fake/World.h"

#include <filesystem>
#include <fstream>
#include <string>

/// A directory of the test's own in which the program under test believes to stand. Files that the
/// program reads through streams are real ones there; Socket.cfg is one of the fake system's.
class ProgramDirectory {
public:
    explicit ProgramDirectory(const std::string& name)
        : m_path(std::filesystem::temp_directory_path() / name) {
        std::filesystem::remove_all(m_path);
        std::filesystem::create_directories(m_path);
        OSAL::Fake::TheWorld().modulePath = Path("SarvexToolClient");
        OSAL::Fake::TheWorld().files[Path("Socket.cfg")].content = "8738";
    }
    ~ProgramDirectory() {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    ProgramDirectory(const ProgramDirectory&) = delete;
    ProgramDirectory& operator=(const ProgramDirectory&) = delete;

    /// With slashes on every system, as the fake's paths have them.
    std::string Path(const std::string& fileName) const {
        return (m_path / fileName).generic_string();
    }

    void Write(const std::string& fileName, const std::string& content) const {
        std::ofstream(Path(fileName), std::ios::binary) << content;
    }

private:
    std::filesystem::path m_path;
};
