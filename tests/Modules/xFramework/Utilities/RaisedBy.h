#pragma once

#include "Modules/xFramework/Utilities/Exception.h"
#include "tests/Modules/xFramework/Utilities/LogRecorder.h"

#include <memory>
#include <string>

namespace RaisedByDetail {

/// Runs what is expected to raise an exception, and tells of it in the words of describePlace.
template <typename Action, typename DescribePlace>
std::string Describe(Action action, DescribePlace describePlace) {
    const Utilities::LogRecorder log;
    try {
        action();
    } catch (Utilities::Exception* pException) {
        const std::unique_ptr<Utilities::Exception> owner(pException);
        const Utilities::ErrorLocation& place = *owner->GetLocation();
        const std::string record =
            "1|" + place.GetFile() + "|" + place.GetFunction() + "|" + owner->what();
        if (log.records.empty() || log.records.back() != record)
            return "not logged";
        return std::string(owner->what()) + " | " + describePlace(place) + " | " +
               place.GetFunction();
    }
    return "nothing raised";
}

} // namespace RaisedByDetail

/// Runs what is expected to raise an exception. Gives "message | file:line | function" when the
/// exception is also the last record of the log, at the error level and with the same message.
template <typename Action>
std::string RaisedBy(Action action) {
    return RaisedByDetail::Describe(action, [](const Utilities::ErrorLocation& place) {
        return place.GetFile() + ":" + std::to_string(place.GetLine());
    });
}
