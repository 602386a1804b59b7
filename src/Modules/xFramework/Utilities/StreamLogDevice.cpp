#include "Modules/xFramework/Utilities/StreamLogDevice.h"

namespace Utilities {

namespace {

/// Leaves the section on every road out of a block.
class Entry {
public:
    explicit Entry(SyncObjectsOSAL::ICriticalSection& section) : m_section(section) {
        m_section.Enter();
    }
    ~Entry() { m_section.Leave(); }
    Entry(const Entry&) = delete;
    Entry& operator=(const Entry&) = delete;

private:
    SyncObjectsOSAL::ICriticalSection& m_section;
};

} // namespace

StreamLogDevice::StreamLogDevice(std::ostream* stream, SyncObjectsOSAL::ICriticalSection* pLock)
    : m_stream(stream), m_pLock(pLock) {}

void StreamLogDevice::Write(const std::string& line) {
    const Entry entry(*m_pLock);
    *m_stream << line << std::endl;
}

} // namespace Utilities
