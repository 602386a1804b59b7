#include "tests/EndToEnd/Support/SocketTable.h"

#include <arpa/inet.h>
#include <linux/inet_diag.h>
#include <linux/netlink.h>
#include <linux/sock_diag.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cstring>
#include <optional>

namespace EndToEnd {

const char* const socketTablePath = "/proc/net/tcp";

namespace {

/// Asks the system about one connection at a time, however many there are.
class SocketQuery {
public:
    SocketQuery() : m_socket(::socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC, NETLINK_SOCK_DIAG)) {}
    ~SocketQuery() { ::close(m_socket); }
    SocketQuery(const SocketQuery&) = delete;
    SocketQuery& operator=(const SocketQuery&) = delete;

    /// Nothing when the system does not know the connection, or does not answer such questions.
    std::optional<Waiting> Ask(std::uint16_t localPort, std::uint16_t remotePort) const {
        struct {
            nlmsghdr head;
            inet_diag_req_v2 body;
        } question{};
        question.head.nlmsg_len = sizeof question;
        question.head.nlmsg_type = SOCK_DIAG_BY_FAMILY;
        question.head.nlmsg_flags = NLM_F_REQUEST;
        question.body.sdiag_family = AF_INET;
        question.body.sdiag_protocol = IPPROTO_TCP;
        question.body.idiag_states = ~0U;
        inet_diag_sockid& ends = question.body.id;
        ends.idiag_sport = htons(localPort);
        ends.idiag_dport = htons(remotePort);
        ends.idiag_src[0] = ends.idiag_dst[0] = htonl(INADDR_LOOPBACK);
        ends.idiag_cookie[0] = ends.idiag_cookie[1] = INET_DIAG_NOCOOKIE;
        std::array<char, 8192> answer{};
        if (::send(m_socket, &question, sizeof question, 0) < 0)
            return std::nullopt;
        const ssize_t size = ::recv(m_socket, answer.data(), answer.size(), 0);
        return Read(answer.data(), size, ends.idiag_dport);
    }

private:
    static std::optional<Waiting> Read(const char* answer, ssize_t size, std::uint16_t remotePort) {
        nlmsghdr head{};
        inet_diag_msg body{};
        if (size < static_cast<ssize_t>(NLMSG_LENGTH(sizeof body)))
            return std::nullopt;
        std::memcpy(&head, answer, sizeof head);
        std::memcpy(&body, answer + NLMSG_HDRLEN, sizeof body);
        // Where there is no such connection the system may show who listens on the port.
        if (head.nlmsg_type != SOCK_DIAG_BY_FAMILY || body.id.idiag_dport != remotePort)
            return std::nullopt;
        return Waiting{body.idiag_wqueue, body.idiag_rqueue};
    }

    int m_socket;
};

} // namespace

Waiting FindWaiting(std::uint16_t localPort, std::uint16_t remotePort) {
    thread_local const SocketQuery query;
    const std::optional<Waiting> answer = query.Ask(localPort, remotePort);
    // A system without such answers says the same as of a connection that is gone.
    return answer ? *answer : FindInSocketTable(localPort, remotePort);
}

} // namespace EndToEnd
