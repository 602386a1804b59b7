#pragma once

#include <filesystem>
#include <string>

namespace OSAL {

/// A new directory that goes with the object.
class TemporaryDirectory {
public:
    TemporaryDirectory();
    ~TemporaryDirectory();

    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    /// The path of an entry, whether it exists or not.
    std::string PathOf(const std::string& name) const;

    /// Creates a file and returns its path.
    std::string Create(const std::string& name, const std::string& content) const;

    const std::filesystem::path& Path() const { return m_path; }

private:
    std::filesystem::path m_path;
};

} // namespace OSAL
