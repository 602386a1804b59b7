#include "Modules/xFramework/Utilities/Exception.h"

#include "Modules/xFramework/Utilities/FunctionTrace.h"
#include "tests/Modules/xFramework/Utilities/LogRecorder.h"
#include "tests/Modules/xFramework/Utilities/ProviderGuard.h"
#include "tests/Support/TestMemory.h"

#include <gmock/gmock.h>

#include <functional>
#include <ios>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>

namespace Utilities {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Kind = CaughtException::Kind;

TEST(ExceptionLocationTest, CopiesItsTexts) {
    std::string file = "src/Modules/xFramework/Core/Classes/Service";
    std::string function = "Core::Service::OnAttach";
    const ErrorLocation location(file.c_str(), 31, function.c_str());
    file.assign(file.size(), '#');
    function.assign(function.size(), '#');
    EXPECT_EQ(location.GetLine(), 31u);
    EXPECT_EQ(location.GetFile(), "src/Modules/xFramework/Core/Classes/Service");
    EXPECT_EQ(location.GetFunction(), "Core::Service::OnAttach");
}

TEST(ExceptionLocationTest, HoldsTheLargestLine) {
    EXPECT_EQ(ErrorLocation("", 0xFFFFFFFF, "").GetLine(), 0xFFFFFFFFu);
}

/// Counts how many of it there are.
class CountedLocation : public ErrorLocation {
public:
    CountedLocation(int& alive, std::uint32_t line)
        : ErrorLocation("file", line, "function"), m_alive(alive) {
        ++m_alive;
    }
    ~CountedLocation() override { --m_alive; }

private:
    int& m_alive;
};

TEST(ExceptionTest, CopiesItsMessage) {
    std::string message = "Incompatible value type";
    const Exception exception(message);
    message.assign(message.size(), '#');
    EXPECT_STREQ(exception.what(), "Incompatible value type");
}

TEST(ExceptionTest, HasAnEmptyTextWhenTheMessageIsEmpty) {
    EXPECT_STREQ(Exception("").what(), "");
}

TEST(ExceptionTest, HasNoLocationAtFirst) {
    EXPECT_EQ(Exception("message").GetLocation(), nullptr);
}

TEST(ExceptionTest, DeletesItsLocationWithItself) {
    int alive = 0;
    {
        Exception exception("message");
        exception.SetLocation(new CountedLocation(alive, 1));
        EXPECT_EQ(alive, 1);
    }
    EXPECT_EQ(alive, 0);
}

TEST(ExceptionTest, KeepsOnlyTheLastLocation) {
    int alive = 0;
    Exception exception("message");
    exception.SetLocation(new CountedLocation(alive, 1));
    exception.SetLocation(new CountedLocation(alive, 2));
    EXPECT_EQ(alive, 1);
    EXPECT_EQ(exception.GetLocation()->GetLine(), 2u);
    exception.SetLocation(nullptr);
    EXPECT_EQ(alive, 0);
    EXPECT_EQ(exception.GetLocation(), nullptr);
}

TEST(ExceptionTest, IsDeletedThroughItsStandardBase) {
    int alive = 0;
    auto exception = std::make_unique<Exception>("message");
    exception->SetLocation(new CountedLocation(alive, 1));
    std::unique_ptr<std::exception> base = std::move(exception);
    EXPECT_STREQ(base->what(), "message");
    base.reset();
    EXPECT_EQ(alive, 0);
}

/// Outlives those that delete it, so that two can.
class LastingLocation : public ErrorLocation {
public:
    using ErrorLocation::ErrorLocation;

    void operator delete(LastingLocation* /*location*/, std::destroying_delete_t) {}
};

TEST(ExceptionTest, CopyPointsAtTheLocationOfItsSource) {
    LastingLocation location("file", 1, "function");
    Exception source("message");
    source.SetLocation(&location);
    const Exception copy(source);
    EXPECT_EQ(copy.GetLocation(), &location);
    EXPECT_EQ(source.GetLocation(), &location);
    EXPECT_STREQ(copy.what(), "message");
}

/// How a handler of the given type sees a framework exception.
template <typename Handled>
bool IsCaughtAs() {
    auto exception = std::make_unique<Exception>("message");
    Exception* const thrown = exception.get();
    try {
        throw thrown;
    } catch (Handled* pCaught) {
        return static_cast<void*>(thrown) == static_cast<void*>(pCaught);
    } catch (...) {
        return false;
    }
}

TEST(ExceptionTest, IsCaughtAsAPointerToEachOfItsBases) {
    EXPECT_TRUE(IsCaughtAs<Exception>());
    EXPECT_TRUE(IsCaughtAs<std::exception>());
    EXPECT_TRUE(IsCaughtAs<void>());
    EXPECT_FALSE(IsCaughtAs<ErrorLocation>());
}

TEST(ExceptionTest, CountsThoseThatLive) {
    const std::int64_t before = Exception::GetLiveCount();
    {
        const Exception first("first");
        const Exception copy(first);
        EXPECT_EQ(Exception::GetLiveCount(), before + 2);
    }
    EXPECT_EQ(Exception::GetLiveCount(), before);
}

constexpr ErrorSite site{"src/Modules/xFramework/Core/Classes/Service", 31,
                         "Core::Service::OnAttach"};

/// The framework exception that the action throws; null when it throws none.
std::unique_ptr<Exception> Catch(const std::function<void()>& action) {
    try {
        action();
    } catch (Exception* pException) {
        return std::unique_ptr<Exception>(pException);
    }
    return nullptr;
}

class ExceptionRaiseTest : public testing::Test {
protected:
    LogRecorder log;
};

TEST_F(ExceptionRaiseTest, ThrowsThePointerWithMessageAndLocation) {
    const auto exception = Catch([] { Raise("Incompatible value type", site); });
    ASSERT_NE(exception, nullptr);
    EXPECT_STREQ(exception->what(), "Incompatible value type");
    ASSERT_NE(exception->GetLocation(), nullptr);
    EXPECT_EQ(exception->GetLocation()->GetFile(), "src/Modules/xFramework/Core/Classes/Service");
    EXPECT_EQ(exception->GetLocation()->GetLine(), 31u);
    EXPECT_EQ(exception->GetLocation()->GetFunction(), "Core::Service::OnAttach");
}

TEST_F(ExceptionRaiseTest, LogsTheMessageOnceAtTheErrorLevel) {
    Catch([] { Raise("Incompatible value type", site); });
    EXPECT_THAT(log.records, ElementsAre("1|src/Modules/xFramework/Core/Classes/Service|"
                                         "Core::Service::OnAttach|Incompatible value type"));
}

TEST_F(ExceptionRaiseTest, IsCaughtByAHandlerForStandardExceptions) {
    try {
        Raise("message", site);
    } catch (std::exception* pException) {
        EXPECT_STREQ(pException->what(), "message");
        delete pException;
    }
}

TEST_F(ExceptionRaiseTest, HasLoggedBeforeItNeedsMemoryForTheException) {
    const TestSupport::FailingSize noMemory(sizeof(Exception));
    EXPECT_THROW(Raise("message", site), std::bad_alloc);
    EXPECT_THAT(log.records, ElementsAre("1|src/Modules/xFramework/Core/Classes/Service|"
                                         "Core::Service::OnAttach|message"));
}

TEST_F(ExceptionRaiseTest, GoesWithoutALocationWhenThereIsNoMemoryForIt) {
    std::unique_ptr<Exception> exception;
    {
        const TestSupport::FailingSize noMemory(sizeof(ErrorLocation));
        exception = Catch([] { Raise("message", site); });
    }
    ASSERT_NE(exception, nullptr);
    EXPECT_STREQ(exception->what(), "message");
    EXPECT_EQ(exception->GetLocation(), nullptr);
}

TEST_F(ExceptionRaiseTest, GoesWithoutALocationWhenThereIsNoMemoryForItsTexts) {
    const std::string file(500, 'f');
    std::unique_ptr<Exception> exception;
    {
        const TestSupport::FailingSize noMemory(file.size() + 1);
        SingletonWrapper<LogPrinter>()->SetLevelMask("recorder", 0);
        exception = Catch([&file] { Raise("message", {file.c_str(), 1, "function"}); });
    }
    ASSERT_NE(exception, nullptr);
    EXPECT_EQ(exception->GetLocation(), nullptr);
}

TEST_F(ExceptionRaiseTest, TellsThePlaceOfTheCallWhenNoSiteIsGiven) {
    constexpr std::uint32_t lineOfTheCall = __LINE__ + 1;
    const auto exception = Catch([] { Raise("message", "Utilities::Caller"); });
    ASSERT_NE(exception, nullptr);
    EXPECT_STREQ(exception->what(), "message");
    ASSERT_NE(exception->GetLocation(), nullptr);
    EXPECT_EQ(exception->GetLocation()->GetFile(), SourceName(__FILE__));
    EXPECT_EQ(exception->GetLocation()->GetLine(), lineOfTheCall);
    EXPECT_EQ(exception->GetLocation()->GetFunction(), "Utilities::Caller");
    EXPECT_THAT(log.records,
                ElementsAre("1|" + SourceName(__FILE__) + "|Utilities::Caller|message"));
}

TEST_F(ExceptionRaiseTest, AssertionTellsThePlaceOfTheCallWhenNoSiteIsGiven) {
    Assert(true, "pCreator", "Utilities::Caller");
    EXPECT_THAT(log.records, IsEmpty());
    constexpr std::uint32_t lineOfTheCall = __LINE__ + 1;
    const auto exception = Catch([] { Assert(false, "pCreator", "Utilities::Caller"); });
    ASSERT_NE(exception, nullptr);
    EXPECT_STREQ(exception->what(), "Assertion (pCreator) failed at Utilities::Caller");
    ASSERT_NE(exception->GetLocation(), nullptr);
    EXPECT_EQ(exception->GetLocation()->GetFile(), SourceName(__FILE__));
    EXPECT_EQ(exception->GetLocation()->GetLine(), lineOfTheCall);
    EXPECT_EQ(exception->GetLocation()->GetFunction(), "Utilities::Caller");
}

TEST_F(ExceptionRaiseTest, AssertionThatHoldsDoesNothing) {
    EXPECT_EQ(Catch([] { Assert(true, "GetDomain() == pDomain", site); }), nullptr);
    EXPECT_THAT(log.records, IsEmpty());
}

TEST_F(ExceptionRaiseTest, AssertionThatFailsNamesConditionAndFunction) {
    const auto exception = Catch([] { Assert(false, "GetDomain() == pDomain", site); });
    ASSERT_NE(exception, nullptr);
    EXPECT_STREQ(exception->what(),
                 "Assertion (GetDomain() == pDomain) failed at Core::Service::OnAttach");
    EXPECT_EQ(exception->GetLocation()->GetLine(), 31u);
    EXPECT_THAT(log.records,
                ElementsAre("1|src/Modules/xFramework/Core/Classes/Service|Core::Service::OnAttach|"
                            "Assertion (GetDomain() == pDomain) failed at "
                            "Core::Service::OnAttach"));
}

/// A provider that shows wherever it was called.
void Mark(std::string& text) {
    text += "!";
}

TEST_F(ExceptionRaiseTest, AssertionInsertsItsTextsVerbatim) {
    const ProviderGuard guard(&Mark);
    const auto exception = Catch([] { Assert(false, "p $(v)", site); });
    ASSERT_NE(exception, nullptr);
    EXPECT_STREQ(exception->what(), "Assertion (p $(v)) failed at Core::Service::OnAttach!");
}

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

TEST(ExceptionCaughtTest, TakesFrameworkExceptionsAndDeletesThem) {
    bool isDeleted = false;
    const CaughtException caught = Take(
        [&isDeleted] { throw static_cast<Exception*>(new TellingException("gone", isDeleted)); });
    EXPECT_EQ(caught.kind, Kind::Framework);
    EXPECT_EQ(caught.text, "gone");
    EXPECT_TRUE(isDeleted);
}

TEST(ExceptionCaughtTest, TakesFrameworkExceptionsByValue) {
    const CaughtException caught = Take([] { throw Exception("by value"); });
    EXPECT_EQ(caught.kind, Kind::Framework);
    EXPECT_EQ(caught.text, "by value");
}

TEST(ExceptionCaughtTest, TakesOtherPointersToStandardExceptions) {
    const CaughtException caught =
        Take([] { throw static_cast<std::exception*>(new std::runtime_error("by pointer")); });
    EXPECT_EQ(caught.kind, Kind::Framework);
    EXPECT_EQ(caught.text, "by pointer");
}

TEST(ExceptionCaughtTest, TakesStandardExceptionsByValue) {
    const CaughtException caught = Take([] { throw std::invalid_argument("bad number"); });
    EXPECT_EQ(caught.kind, Kind::Standard);
    EXPECT_EQ(caught.text, "bad number");
}

TEST(ExceptionCaughtTest, TellsStreamFailuresApart) {
    std::string message;
    const CaughtException caught = Take([&message] {
        const std::ios_base::failure failure("no file");
        message = failure.what();
        throw failure;
    });
    EXPECT_EQ(caught.kind, Kind::StreamFailure);
    EXPECT_EQ(caught.text, message);
}

TEST(ExceptionCaughtTest, HasNoTextForAnythingElse) {
    const CaughtException caught = Take([] { throw 42; });
    EXPECT_EQ(caught.kind, Kind::Unknown);
    EXPECT_EQ(caught.text, "");
}

} // namespace
} // namespace Utilities
