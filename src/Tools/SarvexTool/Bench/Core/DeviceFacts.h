#pragma once

#include <optional>
#include <string>

namespace Bench {

/// What a result tells of the device.
struct DeviceFacts {
    std::optional<std::string> countryCode;
    /// Why the country code is not known, without an end mark; empty where it is.
    std::string whyUnknown;
};

} // namespace Bench
