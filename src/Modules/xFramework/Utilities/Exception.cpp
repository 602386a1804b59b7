#include "Modules/xFramework/Utilities/Exception.h"

#include "Modules/xFramework/Utilities/Format.h"
#include "Modules/xFramework/Utilities/FunctionTrace.h"
#include "Modules/xFramework/Utilities/Log.h"

#include <ios>
#include <memory>
#include <new>

namespace Utilities {

namespace {

/// Null when there is no memory for it: the exception then has no location.
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

void Raise(const std::string& message, const char* function, const char* file, std::uint32_t line) {
    Raise(message, {SourceName(file).c_str(), line, function});
}

void Assert(bool condition, const char* conditionText, const ErrorSite& site) {
    if (!condition)
        Raise(Format("Assertion (${1}) failed at ${2}") % conditionText % site.function, site);
}

void Assert(bool condition, const char* conditionText, const char* function, const char* file,
            std::uint32_t line) {
    if (!condition)
        Assert(false, conditionText, {SourceName(file).c_str(), line, function});
}

CaughtException TakeCaughtException() {
    using Kind = CaughtException::Kind;
    try {
        throw;
    } catch (std::exception* pException) {
        const std::unique_ptr<std::exception> owner(pException);
        return {Kind::Framework, owner->what()};
    } catch (const Exception& exception) {
        return {Kind::Framework, exception.what()};
    } catch (const std::ios_base::failure& failure) {
        return {Kind::StreamFailure, failure.what()};
    } catch (const std::exception& exception) {
        return {Kind::Standard, exception.what()};
    } catch (...) {
        return {Kind::Unknown, ""};
    }
}

} // namespace Utilities
