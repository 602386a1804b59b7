#include "Modules/xFramework/Utilities/FunctionTrace.h"

#include "Modules/xFramework/Utilities/Format.h"
#include "Modules/xFramework/Utilities/Log.h"
#include "Modules/xFramework/Utilities/SourceName.h"

#include <exception>

namespace Utilities {

FunctionTrace::FunctionTrace(const char* function, const std::source_location& place)
    : m_function(function),
      m_file(SourceName(place.file_name())),
      m_line(place.line()),
      m_exceptionsAtEntry(std::uncaught_exceptions()) {
    Log(LogLevel::Info, m_file.c_str(), m_line, m_function, Format("--------------------->Enter"));
}

FunctionTrace::~FunctionTrace() {
    if (std::uncaught_exceptions() == m_exceptionsAtEntry)
        Log(LogLevel::Info, m_file.c_str(), m_line, m_function,
            Format("<---------------------Exit"));
}

} // namespace Utilities
