#pragma once

#include "Tools/SarvexTool/Bench/Core/Problems.h"

#include <stdexcept>
#include <string>
#include <vector>

namespace Bench {

/// A file that a subcommand cannot go on with, and all that is wrong with it.
class BadFile : public std::runtime_error {
public:
    /// One problem of the file itself, for example "cannot be read".
    BadFile(std::string file, const std::string& problem);
    /// At least one problem.
    BadFile(std::string file, std::vector<Problem> problems);

    /// The name as the user gave it, in UTF-8; "-" for a standard stream.
    const std::string& File() const { return m_file; }
    const std::vector<Problem>& Problems() const { return m_problems; }

private:
    std::string m_file;
    std::vector<Problem> m_problems;
};

/// An input that cannot be read or understood.
class BadInput : public BadFile {
public:
    using BadFile::BadFile;
};

/// An output that cannot be written.
class BadOutput : public BadFile {
public:
    using BadFile::BadFile;
};

} // namespace Bench
