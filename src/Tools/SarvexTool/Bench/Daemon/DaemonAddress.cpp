#include "Tools/SarvexTool/Bench/Daemon/DaemonAddress.h"

#include <charconv>

namespace Bench {

namespace {

/// The address with what follows its host: nothing, or a colon and a port.
std::optional<DaemonAddress> WithPort(std::string_view host, std::string_view rest) {
    if (host.empty())
        return std::nullopt;
    if (rest.empty())
        return DaemonAddress{std::string(host), 0};
    const auto port = rest.front() == ':' ? ParsePort(rest.substr(1)) : std::nullopt;
    return port ? std::optional(DaemonAddress{std::string(host), *port}) : std::nullopt;
}

} // namespace

std::string DaemonAddress::ToText() const {
    const bool isVersion6 = host.find(':') != std::string::npos;
    const std::string shown = isVersion6 ? "[" + host + "]" : host;
    return port == 0 ? shown : shown + ":" + std::to_string(port);
}

std::optional<DaemonAddress> ParseDaemonAddress(std::string_view text) {
    if (text.starts_with('[')) {
        const std::size_t end = text.find(']');
        if (end == std::string_view::npos)
            return std::nullopt;
        return WithPort(text.substr(1, end - 1), text.substr(end + 1));
    }
    const std::size_t colon = text.find(':');
    if (colon == std::string_view::npos)
        return WithPort(text, "");
    return WithPort(text.substr(0, colon), text.substr(colon));
}

std::optional<std::uint16_t> ParsePort(std::string_view text) {
    std::uint16_t port = 0;
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, port);
    return error == std::errc() && rest == end && port != 0 ? std::optional(port) : std::nullopt;
}

} // namespace Bench
