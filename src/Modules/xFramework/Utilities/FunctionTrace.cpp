#include "Modules/xFramework/Utilities/FunctionTrace.h"

#include "Modules/xFramework/Utilities/Format.h"
#include "Modules/xFramework/Utilities/Log.h"

#include <exception>

namespace Utilities {

std::string SourceName(const std::string& path) {
    const std::string rooted = "/" + path;
    const std::size_t root = rooted.rfind("/src/");
    const std::string name = path.substr(root == std::string::npos ? 0 : root);
    const std::size_t fileName = name.rfind('/') + 1;
    const std::size_t extension = name.find('.', fileName);
    return name.substr(0, extension);
}

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
