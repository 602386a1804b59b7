#include "Modules/xFramework/Utilities/Log.h"

#include "Modules/xFramework/Utilities/LogPrinter.h"
#include "Modules/xFramework/Utilities/Singleton.h"

namespace Utilities {

void Log(std::uint32_t level, const char* file, std::uint32_t line, const char* function,
         const std::string& message) {
    SingletonWrapper<LogPrinter> printer;
    printer.accessObject(); // The instance must exist before operator-> is used.
    printer->Dispatch(level, file, line, function, message);
}

} // namespace Utilities
