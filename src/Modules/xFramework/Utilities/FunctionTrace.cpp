#include "Modules/xFramework/Utilities/FunctionTrace.h"

#include "Modules/xFramework/Utilities/Format.h"
#include "Modules/xFramework/Utilities/Log.h"
#include "Modules/xFramework/Utilities/SourceName.h"

#include <exception>

namespace Utilities {

FunctionTrace::FunctionTrace(const char* function, const char* file, std::uint32_t line)
    : m_function(function),
      m_file(SourceName(file)),
      m_line(line),
      m_exceptionsAtEntry(std::uncaught_exceptions()) {
    Log(LogLevel::Info, m_file.c_str(), m_line, m_function, Format("--------------------->Enter"));
}

FunctionTrace::~FunctionTrace() noexcept(false) {
    if (std::uncaught_exceptions() == m_exceptionsAtEntry)
        Log(LogLevel::Info, m_file.c_str(), m_line, m_function,
            Format("<---------------------Exit"));
}

} // namespace Utilities
