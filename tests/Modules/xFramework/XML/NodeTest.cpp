#include "Modules/xFramework/XML/Node.h"

#include "tests/Support/VirtualSlots.h"

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace XML {
namespace {

class AttributeRecorder : public IAttributeVisitor {
public:
    void Visit(const char* name, const char* value) override {
        m_text += std::string(name) + "=" + value + " ";
    }

    std::string m_text;
};

std::string Attributes(const Node& node) {
    AttributeRecorder recorder;
    node.EnumerateAttributes(recorder);
    return recorder.m_text;
}

std::string ChildNames(const Node& node) {
    std::string names;
    for (const auto [name, child] : node.GetChildren())
        names += name + " ";
    return names;
}

/// Knows the values of a table, and the resolvers that were offered to it.
class TableResolver : public IResolver {
public:
    using Table = std::map<std::string, std::string>;

    explicit TableResolver(Table table) : m_table(std::move(table)) {}

    const char* Resolve(const char* name) override {
        const auto found = m_table.find(name);
        return found == m_table.end() ? nullptr : found->second.c_str();
    }
    void SetResolver(IResolver* pResolver) override { m_offered.push_back(pResolver); }

    std::vector<IResolver*> m_offered;

private:
    Table m_table;
};

TEST(NodeTest, NewNodeIsEmpty) {
    const Node node;

    EXPECT_EQ(Attributes(node), "");
    EXPECT_EQ(node.GetText(), "");
    EXPECT_TRUE(node.GetChildren().IsEmpty());
}

TEST(NodeTest, MissingAttributeReadsAsEmptyText) {
    const Node node;

    EXPECT_FALSE(node.HasAttribute("a"));
    EXPECT_EQ(node.FindAttribute("a"), nullptr);
    EXPECT_STREQ(node.GetAttribute("a"), "");
}

TEST(NodeTest, SetAttributeIsReadBack) {
    Node node;
    node.SetAttribute("a", "1");

    EXPECT_TRUE(node.HasAttribute("a"));
    EXPECT_STREQ(node.FindAttribute("a"), "1");
    EXPECT_STREQ(node.GetAttribute("a"), "1");
    EXPECT_FALSE(node.HasAttribute("A"));
    EXPECT_FALSE(node.HasAttribute(""));
}

TEST(NodeTest, SetAttributeReplacesTheValue) {
    Node node;
    node.SetAttribute("a", "1");
    node.SetAttribute("b", "2");
    node.SetAttribute("a", "3");

    EXPECT_EQ(Attributes(node), "a=3 b=2 ");
}

TEST(NodeTest, AttributesAreEnumeratedInTheOrderOfTheirNames) {
    Node node;
    for (const char* name : {"value", "Z", "power", "MCC", "a"})
        node.SetAttribute(name, "x");

    EXPECT_EQ(Attributes(node), "MCC=x Z=x a=x power=x value=x ");
}

TEST(NodeTest, SetAttributeToTheEmptyTextRemovesIt) {
    Node node;
    node.SetAttribute("a", "1");
    node.SetAttribute("b", "2");
    node.SetAttribute("a", "");

    EXPECT_EQ(Attributes(node), "b=2 ");
    EXPECT_EQ(node.FindAttribute("a"), nullptr);
}

TEST(NodeTest, SetAttributeToTheEmptyTextAddsNone) {
    Node node;
    node.SetAttribute("a", "");

    EXPECT_EQ(Attributes(node), "");
}

TEST(NodeTest, AttributeCanBeSetFromTheTextsOfAnotherOne) {
    Node node;
    node.SetAttribute("m", "value");
    for (const char* name : {"a", "b", "c", "x", "y", "m"})
        node.SetAttribute(name, node.GetAttribute("m"));

    EXPECT_EQ(Attributes(node), "a=value b=value c=value m=value x=value y=value ");
}

TEST(NodeTest, TextOfAChildReplacesAMissingAttribute) {
    Node node;
    node.AddChild("x")->SetText("5");
    node.AddChild("x")->SetText("6");

    EXPECT_TRUE(node.HasAttribute("x"));
    EXPECT_STREQ(node.FindAttribute("x"), "5");
    EXPECT_STREQ(node.GetAttribute("x"), "5");
    EXPECT_EQ(Attributes(node), "");
}

TEST(NodeTest, AttributeGoesBeforeTheTextOfAChild) {
    Node node;
    node.AddChild("x")->SetText("5");
    node.SetAttribute("x", "7");

    EXPECT_STREQ(node.FindAttribute("x"), "7");
}

TEST(NodeTest, ChildWithoutTextReplacesNothing) {
    Node node;
    node.AddChild("x");
    node.AddChild("x")->SetText("6");

    EXPECT_FALSE(node.HasAttribute("x"));
    EXPECT_EQ(node.FindAttribute("x"), nullptr);
    EXPECT_STREQ(node.GetAttribute("x"), "");
}

TEST(NodeTest, AddedChildIsEmptyAndFollowsItsEquals) {
    Node node;
    const Node* second = node.AddChild("b");
    const Node* first = node.AddChild("a");
    const Node* third = node.AddChild("b");

    EXPECT_EQ(ChildNames(node), "a b b ");
    std::vector<const Node*> order;
    for (const auto [name, child] : node.GetChildren())
        order.push_back(child.get());
    EXPECT_EQ(order, (std::vector<const Node*>{first, second, third}));
    EXPECT_EQ(Attributes(*first), "");
    EXPECT_EQ(first->GetText(), "");
}

TEST(NodeTest, DestructionDeletesTheWholeTree) {
    std::weak_ptr<Node> child;
    std::weak_ptr<Node> grandchild;
    {
        Node top;
        Node* node = top.AddChild("a");
        node->AddChild("b");
        child = (*top.GetChildren().begin()).node;
        grandchild = (*node->GetChildren().begin()).node;
        ASSERT_FALSE(grandchild.expired());
    }
    EXPECT_TRUE(child.expired());
    EXPECT_TRUE(grandchild.expired());
}

TEST(NodeTest, TextWithoutResolverExpandsToItself) {
    const Node node;
    for (const char* text : {"", "plain", "$(name)", "$", "$(", "a$(b"}) {
        SCOPED_TRACE(text);
        std::string out = "old";
        EXPECT_STREQ(node.ExpandValue(out, text, false), text);
        EXPECT_EQ(out, text);
        EXPECT_STREQ(node.GetExpandedValue(out, text, false), text);
    }
}

struct Expansion {
    const char* text;
    const char* kept;
    const char* removed;
};

TEST(NodeTest, ReferencesExpandToTheValuesOfTheResolver) {
    TableResolver resolver(
        TableResolver::Table{{"a", "1"}, {"x.y_z-9", "long"}, {"nested", "$(a)"}, {"empty", ""}});
    Node node;
    node.SetResolver(&resolver);
    const Expansion expansions[] = {
        {"$(a)", "1", "1"},
        {"<$(a)$(x.y_z-9)>", "<1long>", "<1long>"},
        {"$(nested)", "$(a)", "$(a)"},
        {"[$(empty)]", "[]", "[]"},
        {"[$(unknown)]", "[$(unknown)]", "[]"},
        {"$()", "$()", "$()"},
        {"$(a b)", "$(a b)", "$(a b)"},
        {"$(a", "$(a", "$(a"},
        {"$($(a)", "$(1", "$(1"},
    };
    for (const Expansion& expansion : expansions) {
        SCOPED_TRACE(expansion.text);
        std::string out;
        EXPECT_STREQ(node.ExpandValue(out, expansion.text, false), expansion.kept);
        EXPECT_STREQ(node.GetExpandedValue(out, expansion.text, true), expansion.removed);
    }
}

TEST(NodeTest, ExpandedTextMayBelongToTheTarget) {
    const Node node;
    std::string out = "text";

    EXPECT_STREQ(node.GetExpandedValue(out, out.c_str(), false), "text");
}

TEST(NodeTest, NumericValueIsTheDecimalIntegerOfTheExpandedText) {
    TableResolver resolver(TableResolver::Table{{"n", "-12"}});
    Node node;
    node.SetResolver(&resolver);
    const std::pair<const char*, const char*> values[] = {
        {"5", "5"},
        {"-7", "-7"},
        {"+3", "3"},
        {" 4", "4"},
        {"12abc", "12"},
        {"$(n)", "-12"},
        {"007", "7"},
        {"abc", "0"},
        {"", "0"},
        {"-9223372036854775808", "-9223372036854775808"},
        {"9223372036854775808", "9223372036854775807"},
    };
    for (const auto& [text, expected] : values) {
        SCOPED_TRACE(text);
        std::string out;
        EXPECT_STREQ(node.GetNumericValue(out, text), expected);
    }
}

TEST(NodeTest, FirstResolverIsKeptAndTakesTheOthers) {
    TableResolver first(TableResolver::Table{{"a", "first"}});
    TableResolver second(TableResolver::Table{{"a", "second"}});
    Node node;
    node.SetResolver(nullptr);
    node.SetResolver(&first);
    node.SetResolver(&second);
    node.SetResolver(nullptr);

    std::string out;
    EXPECT_STREQ(node.ExpandValue(out, "$(a)", false), "first");
    EXPECT_EQ(first.m_offered, std::vector<IResolver*>{&second});
    EXPECT_TRUE(second.m_offered.empty());
}

TEST(NodeTest, OperationsAreInTheOrderThatOtherModulesAreBuiltAgainst) {
    EXPECT_EQ(TestSupport::VirtualSlots(
                  &Node::HasAttribute, &Node::FindAttribute, &Node::GetAttribute,
                  &Node::SetAttribute, &Node::EnumerateAttributes, &Node::ExpandValue,
                  &Node::GetExpandedValue, &Node::GetNumericValue, &Node::SetResolver),
              (std::vector<std::size_t>{0, 1, 2, 3, 4, 5, 6, 7, 8}));
}

} // namespace
} // namespace XML
