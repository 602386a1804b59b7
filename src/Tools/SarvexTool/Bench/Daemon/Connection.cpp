#include "Tools/SarvexTool/Bench/Daemon/Connection.h"

#include "Tools/SarvexTool/Bench/Daemon/Exchange.h"

namespace Bench {

std::string ExchangeBytes(const std::string& host, std::uint16_t port, const std::string& request,
                          std::chrono::milliseconds timeout) {
    boost::asio::io_context context;
    std::string answer;
    std::string failure;
    bool isDone = false;
    const auto exchange = std::make_shared<Exchange>(
        context, std::make_shared<Endpoints>(context, DaemonAddress{host, port}), request,
        Exchange::Events{[&](std::string_view, std::string_view text) { answer += text; },
                         [&](const std::string& words) {
                             isDone = true;
                             failure = words;
                         }});
    exchange->Start();
    context.run_for(timeout);
    const ExchangeStep step = exchange->Step();
    const bool isConnected = step != ExchangeStep::Connecting;
    if (!isDone)
        throw ExchangeFailure(
            (isConnected ? "gives no whole answer within " : "cannot be reached within ") +
                SecondsText(static_cast<double>(timeout.count()) / 1000) + " s",
            isConnected);
    // For the client, a broken connection ends the answer.
    if (step == ExchangeStep::Connecting || step == ExchangeStep::Sending)
        throw ExchangeFailure(failure, isConnected);
    if (answer.empty())
        throw ExchangeFailure("closes the connection without an answer", isConnected);
    return answer;
}

} // namespace Bench
