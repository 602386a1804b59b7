#pragma once

// Public, stable within a major version. The formatter is for any thread, and so is the device. The
// device owns its lock, not its stream.

#include "Modules/xFramework/SyncObjectsOSAL/ICriticalSection.h"
#include "Modules/xFramework/Utilities/LogPrinter.h"

#include <memory>
#include <ostream>

namespace Utilities {

/// One line a record: the level's tag, the function, the message. No file, line or time. The
/// columns are filled with blanks whatever the stream's fill, and the stream's settings stay as
/// they are.
class BriefLogFormatter : public ILogFormatter {
public:
    void Format(std::uint32_t level, const char* file, const char* function,
                const std::string& message, std::ostream& out) override;
};

/// Writes log lines to a text stream, one whole line at a time from however many threads.
class StreamLogDevice : public ILogDevice {
public:
    /// The stream stays the caller's and must outlive the device; the lock becomes the device's.
    StreamLogDevice(std::ostream* stream, SyncObjectsOSAL::ICriticalSection* pLock);

    /// Writes the line and an end of line, and flushes.
    void Write(const std::string& line) override;

private:
    std::ostream* m_stream;
    std::unique_ptr<SyncObjectsOSAL::ICriticalSection> m_pLock;
};

} // namespace Utilities
