#include "Modules/xFramework/XML/Children.h"

#include "Modules/xFramework/XML/Node.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace XML {
namespace {

/// The names of the children with their texts, "a1 b2 ".
std::string Describe(const Children& children) {
    std::string description;
    for (const auto [name, node] : children)
        description += name + node->GetText() + " ";
    return description;
}

Node* AddWithText(Children& children, const char* name, const char* text) {
    Node* node = children.Add(name);
    node->SetText(text);
    return node;
}

TEST(ChildrenTest, NewListIsEmpty) {
    const Children children;

    EXPECT_TRUE(children.IsEmpty());
    EXPECT_EQ(Describe(children), "");
    EXPECT_EQ(children.FindFirst("a"), nullptr);
}

TEST(ChildrenTest, NamesAreSortedAndEqualNamesKeepTheOrderAdded) {
    Children children;
    AddWithText(children, "b", "1");
    AddWithText(children, "a", "2");
    AddWithText(children, "b", "3");

    EXPECT_FALSE(children.IsEmpty());
    EXPECT_EQ(Describe(children), "a2 b1 b3 ");
}

TEST(ChildrenTest, NamesAreComparedByteByByte) {
    Children children;
    for (const char* name : {"\xE4", "a", "B", "ab", "Z", "0", ""})
        children.Add(name);

    EXPECT_EQ(Describe(children), " 0 B Z a ab \xE4 ");
}

TEST(ChildrenTest, FindFirstGivesTheOneAddedFirst) {
    Children children;
    children.Add("a");
    const Node* first = children.Add("b");
    children.Add("b");

    EXPECT_EQ(children.FindFirst("b"), first);
    EXPECT_EQ(children.FindFirst("c"), nullptr);
}

TEST(ChildrenTest, CopyIsASnapshotThatSharesTheNodes) {
    Children children;
    Node* shared = AddWithText(children, "a", "1");
    const Children snapshot = children;
    AddWithText(children, "b", "2");
    AddWithText(children, "a", "3");
    shared->SetText("4");

    EXPECT_EQ(Describe(children), "a4 a3 b2 ");
    EXPECT_EQ(Describe(snapshot), "a4 ");
}

TEST(ChildrenTest, AddToACopyLeavesTheOriginalAsItWas) {
    Children children;
    AddWithText(children, "a", "1");
    Children copy = children;
    AddWithText(copy, "b", "2");

    EXPECT_EQ(Describe(children), "a1 ");
    EXPECT_EQ(Describe(copy), "a1 b2 ");
}

TEST(ChildrenTest, AssignmentReplacesTheEntries) {
    Children children;
    children.Add("a");
    Children other;
    other.Add("b");
    const std::weak_ptr<Node> replaced = (*children.begin()).node;
    children = other;

    EXPECT_EQ(Describe(children), "b ");
    EXPECT_TRUE(replaced.expired());
}

TEST(ChildrenTest, NodeLivesUntilTheLastListThatHoldsItGoes) {
    std::weak_ptr<Node> child;
    std::weak_ptr<Node> grandchild;
    Children survivor;
    {
        Children children;
        Node* node = children.Add("a");
        node->AddChild("b");
        child = (*children.begin()).node;
        grandchild = (*node->GetChildren().begin()).node;
        survivor = children;
        EXPECT_EQ(child.use_count(), 1) << "a copy shares the entries until one of the two changes";
        children.Add("c");
        EXPECT_EQ(child.use_count(), 2);
    }
    EXPECT_EQ(child.use_count(), 1);
    EXPECT_FALSE(grandchild.expired());

    survivor = Children();
    EXPECT_TRUE(child.expired());
    EXPECT_TRUE(grandchild.expired());
}

TEST(ChildrenTest, ListBelowADeletedNodeOutlivesItInACopy) {
    Children below;
    {
        Children children;
        Node* node = children.Add("a");
        AddWithText(below, "unused", "");
        node->AddChild("b")->AddChild("c");
        below = node->GetChildren();
    }
    EXPECT_EQ(Describe(below), "b ");
    EXPECT_EQ(Describe(below.FindFirst("b")->GetChildren()), "c ");
}

TEST(ChildrenTest, DeepTreeIsDeletedWithoutRecursion) {
    constexpr int depth = 1'000'000;
    Children children;
    Node* innermost = children.Add("a");
    for (int level = 1; level < depth; ++level)
        innermost = innermost->AddChild("a");
    innermost->AddChild("last");
    const std::weak_ptr<Node> last = (*innermost->GetChildren().begin()).node;
    children = Children();

    EXPECT_TRUE(last.expired());
}

} // namespace
} // namespace XML
