#include "Modules/xFramework/Utilities/CaughtException.h"

#include "Modules/xFramework/Utilities/Exception.h"

#include <ios>
#include <memory>

namespace Utilities {

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
