#include "Modules/xFramework/Utilities/Raise.h"

#include "Modules/xFramework/Utilities/Exception.h"
#include "Modules/xFramework/Utilities/Format.h"
#include "Modules/xFramework/Utilities/Log.h"

#include <memory>
#include <new>

namespace Utilities {

namespace {

/// Null when there is no memory for it: the exception then travels without a location.
ErrorLocation* NewLocation(const ErrorSite& site) {
    try {
        return new ErrorLocation(site.file, site.line, site.function);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

} // namespace

void Raise(const std::string& message, const ErrorSite& site) {
    Log(LogLevel::Error, site.file, site.line, site.function, message);
    auto exception = std::make_unique<Exception>(message);
    exception->SetLocation(NewLocation(site));
    throw exception.release();
}

void Assert(bool condition, const char* conditionText, const ErrorSite& site) {
    if (!condition)
        Raise(Format("Assertion (${1}) failed at ${2}") % conditionText % site.function, site);
}

} // namespace Utilities
