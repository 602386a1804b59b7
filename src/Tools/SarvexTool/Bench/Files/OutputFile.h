#pragma once

#include "Modules/xFramework/OSAL/Interruption.h"
#include "Tools/SarvexTool/Bench/Files/BadFile.h"

#include <filesystem>
#include <fstream>
#include <optional>
#include <ostream>
#include <string>

namespace Bench {

/// A file that is written beside its target and takes its place when it is whole: nothing half
/// written ever replaces something whole, and nothing is left when it fails. What is no file on
/// disk, such as /dev/null or a pipe, is written as it is. While a file on disk is written, a
/// request to end the program waits until what is not whole is taken back.
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

    /// To be called after all was written. Throws BadOutput when not all of it could be.
    void Finish();

    /// To be called once, after Finish. Throws BadOutput when the file cannot take its target's
    /// place.
    void Commit();

private:
    /// Notes the first error, and takes nothing more once the program is to end.
    class Buffer : public std::filebuf {
    public:
        /// 0 for none, and where the system gives no number.
        int Error() const { return m_error; }

    protected:
        int_type overflow(int_type character) override;
        std::streamsize xsputn(const char* text, std::streamsize size) override;
        int sync() override;

    private:
        template <typename Result, typename Write>
        Result Noting(Result failed, Write write);

        int m_error = 0;
    };

    void Open();
    [[noreturn]] void Fail(const std::string& what, int error) const;

    std::string m_name;
    std::filesystem::path m_target;
    /// The file that is written; empty when there is none to rename or remove.
    std::filesystem::path m_written;
    std::optional<OSAL::HeldInterruption> m_held;
    Buffer m_buffer;
    std::ostream m_file;
    std::ostream* m_pStream;
};

/// Writes a whole text as an output file.
void WriteOutput(const std::string& name, std::ostream& standardOutput, const std::string& text);

} // namespace Bench
