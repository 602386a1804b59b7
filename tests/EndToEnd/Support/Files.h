#pragma once

#include <filesystem>
#include <string>

namespace EndToEnd {

/// A new directory that is removed with all its files at the end.
class TemporaryDirectory {
public:
    TemporaryDirectory();
    ~TemporaryDirectory();
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    std::string Path() const { return m_path.string(); }
    std::string Path(const std::string& name) const { return (m_path / name).string(); }

private:
    std::filesystem::path m_path;
};

/// All bytes of a file; empty when there is none.
std::string ReadBytes(const std::string& path);

void WriteBytes(const std::string& path, const std::string& content);

} // namespace EndToEnd
