#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>

/// An empty directory that is the current one while the object lives.
class WorkingDirectory {
public:
    explicit WorkingDirectory(const std::string& name)
        : m_old(std::filesystem::current_path()),
          m_path(std::filesystem::temp_directory_path() /
                 (name + "-" + std::to_string(std::random_device()()))) {
        std::filesystem::create_directories(m_path);
        std::filesystem::current_path(m_path);
    }
    ~WorkingDirectory() {
        std::error_code ignored;
        std::filesystem::current_path(m_old, ignored);
        std::filesystem::remove_all(m_path, ignored);
    }
    WorkingDirectory(const WorkingDirectory&) = delete;
    WorkingDirectory& operator=(const WorkingDirectory&) = delete;

private:
    std::filesystem::path m_old;
    std::filesystem::path m_path;
};

/// Byte for byte.
inline void WriteFile(const std::string& name, const std::string& content) {
    std::ofstream(name, std::ios::binary) << content;
}

/// As text, with line feeds on every system; empty when there is no such file.
inline std::string ReadFile(const std::string& name) {
    std::ifstream file(name);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}
