#pragma once

#include "Tools/SarvexTool/Bench/Daemon/DaemonAddress.h"

// Asio 1.18 forgets to include it.
#include <utility>

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/host_name.hpp>
#include <boost/asio/ip/tcp.hpp>

#include <functional>
#include <memory>
#include <vector>

namespace Bench {

/// The endpoints of a daemon, which the system's resolver is asked for until it has told them once.
class Endpoints : public std::enable_shared_from_this<Endpoints> {
public:
    using Tcp = boost::asio::ip::tcp;
    /// Gets what went wrong: "cannot be found (...)", or an empty text.
    using Callback = std::function<void(const std::string& failure)>;

    /// Asks nothing yet. The context must outlive the object.
    Endpoints(boost::asio::io_context& context, const DaemonAddress& address);

    /// Calls back when there are endpoints or it is clear that there are none; at once when they
    /// are known. Keeps itself alive until then.
    void Find(Callback callback);

    /// Empty before Find has called back without a failure.
    const std::vector<Tcp::endpoint>& All() const { return m_all; }

private:
    Tcp::resolver m_resolver;
    std::string m_host;
    std::string m_port;
    std::vector<Tcp::endpoint> m_all;
};

} // namespace Bench
