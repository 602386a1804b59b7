#pragma once

#include "Tools/SarvexTool/Bench/Files/BadFile.h"

#include <filesystem>
#include <fstream>
#include <ostream>
#include <string>

namespace Bench {

/// A file that is written beside its target and takes its place when it is whole: nothing half
/// written ever replaces something whole, and nothing is left when it fails. What is no file on
/// disk, such as /dev/null or a pipe, is written as it is.
class OutputFile {
public:
    /// The name "-" stands for standard output. Throws BadOutput when the file cannot be created.
    OutputFile(std::string name, std::ostream& standardOutput);
    /// Takes back what was not committed.
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    /// Takes the bytes as they are to be in the file, on every system.
    std::ostream& Stream() { return *m_pStream; }

    /// To be called once, after all was written. Throws BadOutput when not all of it could be, or
    /// when it cannot take its target's place.
    void Commit();

private:
    void Open();
    [[noreturn]] void Fail(const std::string& what, int error) const;

    std::string m_name;
    std::filesystem::path m_target;
    /// The file that is written; empty when there is none to rename or remove.
    std::filesystem::path m_written;
    std::ofstream m_file;
    std::ostream* m_pStream;
};

/// Writes a whole text as an output file.
void WriteOutput(const std::string& name, std::ostream& standardOutput, const std::string& text);

} // namespace Bench
