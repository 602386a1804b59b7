#pragma once

#include <filesystem>
#include <string>

namespace TestSupport {

/// A new directory that is removed with all its files at the end.
class TemporaryDirectory {
public:
    TemporaryDirectory();
    ~TemporaryDirectory();
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    std::string Path() const { return m_path.string(); }
    /// The path of an entry, whether it exists or not.
    std::string Path(const std::string& name) const { return (m_path / name).string(); }

    /// Creates a file and returns its path.
    std::string Create(const std::string& name, const std::string& content) const;

private:
    std::filesystem::path m_path;
};

/// All bytes of a file; empty when there is none.
std::string ReadBytes(const std::string& path);

void WriteBytes(const std::string& path, const std::string& content);

} // namespace TestSupport
