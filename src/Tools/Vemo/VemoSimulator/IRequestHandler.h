#pragma once

#include "Tools/Vemo/VemoSimulator/Delivery.h"

#include <string>
#include <utility>
#include <vector>

namespace VemoSimulator {

/// A request as it came over a connection.
struct Request {
    std::string method;
    std::string target;
    /// Names as they were written, in the order of the request.
    std::vector<std::pair<std::string, std::string>> headers;
    std::string body;
};

/// Answers requests; called from one thread, in the order in which requests are complete.
class IRequestHandler {
public:
    virtual ~IRequestHandler() = default;

    virtual Delivery Handle(const Request& request) = 0;

    /// Answers bytes that are no request, or one that is too large; problem says why.
    virtual Delivery HandleInvalid(int httpStatus, const std::string& problem) = 0;
};

} // namespace VemoSimulator
