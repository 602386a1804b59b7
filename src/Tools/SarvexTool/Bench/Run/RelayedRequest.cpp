#include "Tools/SarvexTool/Bench/Run/RelayedRequest.h"

#include <algorithm>
#include <charconv>

namespace Bench {

namespace {

/// What every request of the client begins with.
constexpr std::string_view beginning = "POST /api/oemtools/command HTTP/1.1\r\n";

/// The client's heads have less than a thousand bytes.
constexpr std::size_t largestHead = 65'536;

/// The number in the head's Content-Length, which the client writes exactly so; nothing when there
/// is none.
std::optional<std::size_t> ContentLength(std::string_view head) {
    constexpr std::string_view label = "\r\nContent-Length: ";
    const std::size_t found = head.find(label);
    if (found == std::string_view::npos)
        return std::nullopt;
    const std::string_view rest = head.substr(found + label.size());
    const std::string_view digits = rest.substr(0, rest.find('\r'));
    std::uint32_t length = 0;
    const char* const end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, length);
    return error == std::errc() && stop == end ? std::optional<std::size_t>(length) : std::nullopt;
}

} // namespace

RelayedRequest::State RelayedRequest::Add(std::string_view bytes) {
    m_bytes += bytes;
    if (!m_size) {
        const State state = ReadHead();
        if (state != State::Complete)
            return state;
    }
    if (m_bytes.size() < *m_size)
        return State::Incomplete;
    m_bytes.resize(*m_size);
    return State::Complete;
}

RelayedRequest::State RelayedRequest::ReadHead() {
    constexpr std::string_view headEnd = "\r\n\r\n";
    const std::size_t compared = std::min(m_bytes.size(), beginning.size());
    if (m_bytes.compare(0, compared, beginning, 0, compared) != 0)
        return State::Foreign;
    const std::size_t end = m_bytes.find(headEnd);
    if (end == std::string::npos)
        return m_bytes.size() > largestHead ? State::Foreign : State::Incomplete;
    const auto length = ContentLength(std::string_view(m_bytes).substr(0, end));
    if (!length)
        return State::Foreign;
    m_size = end + headEnd.size() + *length;
    return State::Complete;
}

} // namespace Bench
