#include "Modules/xFramework/Utilities/Placeholders.h"

#include "Modules/xFramework/Utilities/Exception.h"
#include "tests/Modules/xFramework/Utilities/LogRecorder.h"

#include <gmock/gmock.h>

#include <memory>
#include <string>

namespace Utilities {
namespace {

using testing::ElementsAre;

TEST(Placeholders, AreFoundAnywhereInAText) {
    for (const std::string text : {"${1}", "${2}", "${3}", "${4}", "${5}", "x${1}", "${1}x",
                                   "$${1}", "${${1}", "${ ${5}", "${6}${5}", "${x}${1}"}) {
        SCOPED_TRACE(text);
        EXPECT_TRUE(HasPlaceholder(text));
    }
}

TEST(Placeholders, AreNotSeenWhereNoneIs) {
    for (const std::string text :
         {"", "$", "${", "${1", "$1}", "{1}", "${}", "${0}", "${6}", "${9}", "${10}", "${01}",
          "${ 1}", "${1 }", "${a}", "$(1)", "$ {1}"}) {
        SCOPED_TRACE(text);
        EXPECT_FALSE(HasPlaceholder(text));
    }
}

TEST(Placeholders, LetOtherTextsPass) {
    LogRecorder log;
    RejectPlaceholders("-wifi-band $(band) ${6}", "Argument");
    EXPECT_TRUE(log.records.empty());
}

/// What is raised about the text; null when nothing is.
std::unique_ptr<Exception> Reject(const std::string& text, const std::string& what) {
    try {
        RejectPlaceholders(text, what);
    } catch (Exception* pException) {
        return std::unique_ptr<Exception>(pException);
    }
    return nullptr;
}

TEST(Placeholders, AreRefusedWithAMessageThatHoldsNone) {
    LogRecorder log;
    const auto exception = Reject("-wifi-rate ${1}", "Argument");
    ASSERT_NE(exception, nullptr);
    const std::string message = exception->what();
    EXPECT_EQ(message, "Argument contains a message placeholder (a dollar sign and a digit from 1 "
                       "to 5 in braces), which cannot be sent");
    EXPECT_FALSE(HasPlaceholder(message));
    EXPECT_THAT(log.records, ElementsAre("1|src/Modules/xFramework/Utilities/Placeholders|"
                                         "Utilities::RejectPlaceholders|" +
                                         message));
    ASSERT_NE(exception->GetLocation(), nullptr);
    EXPECT_EQ(exception->GetLocation()->GetFunction(), "Utilities::RejectPlaceholders");
    EXPECT_EQ(exception->GetLocation()->GetLine(), 21u);
}

} // namespace
} // namespace Utilities
