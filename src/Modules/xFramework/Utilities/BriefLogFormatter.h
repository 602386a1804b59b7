#pragma once

#include "Modules/xFramework/Utilities/LogPrinter.h"

namespace Utilities {

/// One line a record: the level's tag, the function, the message. No file, line or time.
class BriefLogFormatter : public ILogFormatter {
public:
    void Format(std::uint32_t level, const char* file, const char* function,
                const std::string& message, std::ostream& out) override;
};

} // namespace Utilities
