#include "Modules/xFramework/Core/Classes/ExpandVariables.h"

#include "Modules/xFramework/Core/Classes/MetaType.h"
#include "Modules/xFramework/Core/Classes/Namespace.h"
#include "Modules/xFramework/Core/Classes/TypeDescriptor.h"
#include "Modules/xFramework/Utilities/Format.h"
#include "Modules/xFramework/Utilities/FormatProviders.h"
#include "tests/Modules/xFramework/Core/Classes/LiveObject.h"

#include <gtest/gtest.h>

#include <chrono>
#include <vector>

namespace {

using namespace Core;

class ExpandVariablesTest : public testing::Test {
protected:
    ExpandVariablesTest() {
        Define("B", Value("1"));
        Define("A1", Value("inner first"));
        Define("number", Value("{int:42}"));
        Define("byte", Value("{int8:65}"));
        Define("nothing", Value());
        Define("reference", Value("$(B)"));
        Define("open", Value("("));
        Define("close", Value(")"));
        Define("a.b", Value("dotted"));
        Value set;
        set.GetMutableRef<std::set<Value>>().insert(Value("x"));
        Define("set", set);
        Enter("object", new LiveObject);
    }
    ~ExpandVariablesTest() override {
        for (const std::string& name : m_names)
            GlobalVariables().Remove(name);
    }

    static std::string Expanded(std::string text) {
        ExpandVariables(text);
        return text;
    }

private:
    void Define(const std::string& name, const Value& value) { Enter(name, new Value(value)); }

    void Enter(const std::string& name, IInterface* pObject) {
        GlobalVariables().Add(name, pObject);
        m_names.push_back(name);
    }

    std::vector<std::string> m_names;
};

TEST_F(ExpandVariablesTest, LongTextOfUnknownReferencesTakesNoLongerThanItsLength) {
    // Searched anew for each reference, these would take minutes.
    std::string text;
    while (text.size() < (8 << 20))
        text += "$(";
    const std::string before = text;
    const auto start = std::chrono::steady_clock::now();
    ExpandVariables(text);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
    EXPECT_EQ(text, before);
}

TEST_F(ExpandVariablesTest, TextThatBeginsWithAParenthesisClosesTheReferenceBeforeIt) {
    EXPECT_EQ(Expanded("$(B$(close)"), "1");
    EXPECT_EQ(Expanded("$(B$(close))"), "1)");
}

TEST_F(ExpandVariablesTest, ParenthesisAfterAReplacementClosesTheNextReference) {
    EXPECT_EQ(Expanded("$(B$(open)$(B))"), "$(B(1)");
    EXPECT_EQ(Expanded("$(A$(B)"), "inner first");
}

TEST_F(ExpandVariablesTest, ReferencesAreReplacedFromTheEndToTheFront) {
    struct {
        const char* text;
        const char* expanded;
    } const cases[] = {{"$(B)", "1"},
                       {"a $(B) b $(number) c", "a 1 b 42 c"},
                       {"$(A$(B))", "inner first"},
                       {"$(unknown)", "$(unknown)"},
                       {"$(unknown)$(B)", "$(unknown)1"},
                       {"$(A$(unknown))", "$(A$(unknown))"},
                       {"x$(number", "x42"},
                       {"$(B) and $(", "1 and $("},
                       {"$()", "$()"},
                       {"$", "$"},
                       {"", ""},
                       {"$(", "$("},
                       {"$B $((B)) ${1}", "$B $((B)) ${1}"},
                       {"$(a.b)", "dotted"},
                       {"$(byte)", "A"}};
    for (const auto& row : cases) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(Expanded(row.text), row.expanded);
    }
}

TEST_F(ExpandVariablesTest, ValueWithoutMetaTypeIsReplacedByNothing) {
    EXPECT_EQ(Expanded("[$(set)][$(nothing)]"), "[][]");
}

TEST_F(ExpandVariablesTest, MemberThatIsNoValueLeavesTheReference) {
    EXPECT_EQ(Expanded("$(object)"), "$(object)");
}

TEST_F(ExpandVariablesTest, InsertedReferencesAreNotExpanded) {
    EXPECT_EQ(Expanded("x$(reference)"), "x$(B)");
}

TEST_F(ExpandVariablesTest, DollarBeforeAnInsertedParenthesisBeginsAReference) {
    EXPECT_EQ(Expanded("$$(open)B)"), "1");
}

TEST_F(ExpandVariablesTest, MessagesExpandTemplatesAndTextsButNotLiterals) {
    EXPECT_EQ(Utilities::Format("$(B): ${1} ${2}").Text(), "1: ${1} ${2}");
    EXPECT_EQ((Utilities::Format("${1} ${2}") % std::string("$(B)") % "$(B)").Text(), "1 $(B)");
}

TEST_F(ExpandVariablesTest, NumbersAreReadWithTheirReferencesExpanded) {
    Value value;
    EXPECT_TRUE(CoreTypes::MetaType<Int>().FromText("0x$(number)", value));
    EXPECT_EQ(value.GetRef<Int>(), 0x42);
}

TEST_F(ExpandVariablesTest, ElementsOfASetAreReadWithTheirReferencesExpanded) {
    Value set;
    set.GetMutableRef<std::set<Value>>().insert(Value("$(number)"));
    EXPECT_EQ(TypeDescriptor<Int>().ConvertSet(set).GetRef<std::set<Int>>(), std::set<Int>{42});
    // A string is there already and not read.
    EXPECT_EQ(TypeDescriptor<std::string>().ConvertSet(set).GetRef<std::set<std::string>>(),
              std::set<std::string>{"$(number)"});
}

TEST_F(ExpandVariablesTest, StringValueThatReadsATextExpandsIt) {
    Value value("text");
    value = "$(B)";
    EXPECT_EQ(value.ToString(), "1");
    EXPECT_EQ(Value("$(B)").ToString(), "$(B)");
}

int g_calls = 0;
void CountCall(std::string&) {
    ++g_calls;
}

TEST_F(ExpandVariablesTest, InstallingItTwiceLeavesOneEntryAtTheEnd) {
    auto& providers = Utilities::FormatProviders::Instance();
    providers.AddStringProvider(CountCall);
    providers.AddStringProvider(ExpandVariables);
    std::string text = "$(reference)";
    providers.ProcessString(text);
    EXPECT_EQ(text, "$(B)");
    EXPECT_EQ(g_calls, 1);
    providers.RemoveStringProvider(CountCall);
}

} // namespace
