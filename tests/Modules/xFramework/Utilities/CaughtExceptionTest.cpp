#include "Modules/xFramework/Utilities/CaughtException.h"

#include "Modules/xFramework/Utilities/Exception.h"

#include <gtest/gtest.h>

#include <functional>
#include <ios>
#include <stdexcept>
#include <string>

namespace Utilities {
namespace {

using Kind = CaughtException::Kind;

CaughtException Take(const std::function<void()>& action) {
    try {
        action();
    } catch (...) {
        return TakeCaughtException();
    }
    return {Kind::Unknown, "nothing was thrown"};
}

/// Shows when it is deleted.
class TellingException : public Exception {
public:
    TellingException(const std::string& message, bool& isDeleted)
        : Exception(message), m_isDeleted(isDeleted) {}
    ~TellingException() override { m_isDeleted = true; }

private:
    bool& m_isDeleted;
};

TEST(CaughtException, TakesFrameworkExceptionsAndDeletesThem) {
    bool isDeleted = false;
    const CaughtException caught = Take(
        [&isDeleted] { throw static_cast<Exception*>(new TellingException("gone", isDeleted)); });
    EXPECT_EQ(caught.kind, Kind::Framework);
    EXPECT_EQ(caught.text, "gone");
    EXPECT_TRUE(isDeleted);
}

TEST(CaughtException, TakesFrameworkExceptionsByValue) {
    const CaughtException caught = Take([] { throw Exception("by value"); });
    EXPECT_EQ(caught.kind, Kind::Framework);
    EXPECT_EQ(caught.text, "by value");
}

TEST(CaughtException, TakesOtherPointersToStandardExceptions) {
    const CaughtException caught =
        Take([] { throw static_cast<std::exception*>(new std::runtime_error("by pointer")); });
    EXPECT_EQ(caught.kind, Kind::Framework);
    EXPECT_EQ(caught.text, "by pointer");
}

TEST(CaughtException, TakesStandardExceptionsByValue) {
    const CaughtException caught = Take([] { throw std::invalid_argument("bad number"); });
    EXPECT_EQ(caught.kind, Kind::Standard);
    EXPECT_EQ(caught.text, "bad number");
}

TEST(CaughtException, TellsStreamFailuresApart) {
    std::string message;
    const CaughtException caught = Take([&message] {
        const std::ios_base::failure failure("no file");
        message = failure.what();
        throw failure;
    });
    EXPECT_EQ(caught.kind, Kind::StreamFailure);
    EXPECT_EQ(caught.text, message);
}

TEST(CaughtException, HasNoTextForAnythingElse) {
    const CaughtException caught = Take([] { throw 42; });
    EXPECT_EQ(caught.kind, Kind::Unknown);
    EXPECT_EQ(caught.text, "");
}

} // namespace
} // namespace Utilities
