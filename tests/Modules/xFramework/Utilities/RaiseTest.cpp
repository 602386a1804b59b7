#include "Modules/xFramework/Utilities/Raise.h"

#include "Modules/xFramework/Utilities/Exception.h"
#include "tests/Modules/xFramework/Utilities/FailingMemory.h"
#include "tests/Modules/xFramework/Utilities/LogRecorder.h"
#include "tests/Modules/xFramework/Utilities/ProviderGuard.h"

#include <gmock/gmock.h>

#include <functional>
#include <memory>
#include <new>
#include <string>

namespace Utilities {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

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

class Raising : public testing::Test {
protected:
    LogRecorder log;
};

TEST_F(Raising, ThrowsThePointerWithMessageAndLocation) {
    const auto exception = Catch([] { Raise("Incompatible value type", site); });
    ASSERT_NE(exception, nullptr);
    EXPECT_STREQ(exception->what(), "Incompatible value type");
    ASSERT_NE(exception->GetLocation(), nullptr);
    EXPECT_EQ(exception->GetLocation()->GetFile(), "src/Modules/xFramework/Core/Classes/Service");
    EXPECT_EQ(exception->GetLocation()->GetLine(), 31u);
    EXPECT_EQ(exception->GetLocation()->GetFunction(), "Core::Service::OnAttach");
}

TEST_F(Raising, LogsTheMessageOnceAtTheErrorLevel) {
    Catch([] { Raise("Incompatible value type", site); });
    EXPECT_THAT(log.records, ElementsAre("1|src/Modules/xFramework/Core/Classes/Service|"
                                         "Core::Service::OnAttach|Incompatible value type"));
}

TEST_F(Raising, IsCaughtByAHandlerForStandardExceptions) {
    try {
        Raise("message", site);
    } catch (std::exception* pException) {
        EXPECT_STREQ(pException->what(), "message");
        delete pException;
    }
}

TEST_F(Raising, HasLoggedBeforeItNeedsMemoryForTheException) {
    const FailingMemory noMemory(sizeof(Exception));
    EXPECT_THROW(Raise("message", site), std::bad_alloc);
    EXPECT_THAT(log.records, ElementsAre("1|src/Modules/xFramework/Core/Classes/Service|"
                                         "Core::Service::OnAttach|message"));
}

TEST_F(Raising, GoesWithoutALocationWhenThereIsNoMemoryForIt) {
    std::unique_ptr<Exception> exception;
    {
        const FailingMemory noMemory(sizeof(ErrorLocation));
        exception = Catch([] { Raise("message", site); });
    }
    ASSERT_NE(exception, nullptr);
    EXPECT_STREQ(exception->what(), "message");
    EXPECT_EQ(exception->GetLocation(), nullptr);
}

TEST_F(Raising, GoesWithoutALocationWhenThereIsNoMemoryForItsTexts) {
    const std::string file(500, 'f');
    std::unique_ptr<Exception> exception;
    {
        const FailingMemory noMemory(file.size() + 1);
        SingletonWrapper<LogPrinter>()->SetLevelMask("recorder", 0);
        exception = Catch([&file] { Raise("message", {file.c_str(), 1, "function"}); });
    }
    ASSERT_NE(exception, nullptr);
    EXPECT_EQ(exception->GetLocation(), nullptr);
}

TEST_F(Raising, AssertionThatHoldsDoesNothing) {
    EXPECT_EQ(Catch([] { Assert(true, "GetDomain() == pDomain", site); }), nullptr);
    EXPECT_THAT(log.records, IsEmpty());
}

TEST_F(Raising, AssertionThatFailsNamesConditionAndFunction) {
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

TEST_F(Raising, AssertionInsertsItsTextsVerbatim) {
    const ProviderGuard guard(&Mark);
    const auto exception = Catch([] { Assert(false, "p $(v)", site); });
    ASSERT_NE(exception, nullptr);
    EXPECT_STREQ(exception->what(), "Assertion (p $(v)) failed at Core::Service::OnAttach!");
}

} // namespace
} // namespace Utilities
