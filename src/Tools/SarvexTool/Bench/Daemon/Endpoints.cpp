#include "Tools/SarvexTool/Bench/Daemon/Endpoints.h"

#include "Modules/xFramework/OSAL/Socket.h"

namespace Bench {

namespace {

using boost::system::error_code;

/// The program holds the system's resolver; the first look-up of the system's seam tells it which
/// services it may ask, and Asio uses the same resolver. An address in digits asks nobody.
void PrepareResolver() {
    OSAL::AddressInfo* const addresses = OSAL::ResolveAddress("127.0.0.1", "1");
    if (addresses != nullptr)
        OSAL::FreeAddress(addresses);
}

} // namespace

Endpoints::Endpoints(boost::asio::io_context& context, const DaemonAddress& address)
    : m_resolver(context), m_host(address.host), m_port(std::to_string(address.port)) {
    error_code notNumeric;
    const auto numeric = boost::asio::ip::make_address(m_host, notNumeric);
    if (!notNumeric)
        m_all.emplace_back(numeric, address.port);
}

void Endpoints::Find(Callback callback) {
    if (!m_all.empty()) {
        callback("");
        return;
    }
    PrepareResolver();
    m_resolver.async_resolve(
        m_host, m_port,
        [self = shared_from_this(), callback = std::move(callback)](
            const error_code& error, const Tcp::resolver::results_type& found) {
            if (!error)
                self->m_all.assign(found.begin(), found.end());
            callback(error ? "cannot be found (" + error.message() + ")" : "");
        });
}

std::string OwnHostName() {
    error_code isUnknown;
    const std::string name = boost::asio::ip::host_name(isUnknown);
    return isUnknown ? "" : name;
}

std::string ResolvedHost(const DaemonAddress& address) {
    boost::asio::io_context context;
    const auto pEndpoints = std::make_shared<Endpoints>(context, address);
    pEndpoints->Find([](const std::string&) {});
    context.run();
    if (pEndpoints->All().empty())
        return address.host;
    const boost::asio::ip::address found = pEndpoints->All().front().address();
    if (found.is_v6() && found.to_v6().is_v4_mapped())
        return boost::asio::ip::make_address_v4(boost::asio::ip::v4_mapped, found.to_v6())
            .to_string();
    const bool isOwn = found.is_unspecified() || found == boost::asio::ip::address_v6::loopback();
    return isOwn ? "127.0.0.1" : found.to_string();
}

} // namespace Bench
