#include "Modules/xFramework/XML/Children.h"

#include "Modules/xFramework/XML/Base.h"
#include "Modules/xFramework/XML/Writer.h"
#include "tests/Support/TestMemory.h"

#include <gtest/gtest.h>

#include <memory>
#include <new>
#include <sstream>
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
    constexpr int depth = 250'000;
    Children children;
    Node* innermost = children.Add("a");
    for (int level = 1; level < depth; ++level)
        innermost = innermost->AddChild("a");
    innermost->AddChild("last");
    const std::weak_ptr<Node> last = (*innermost->GetChildren().begin()).node;
    children = Children();

    EXPECT_TRUE(last.expired());
}

/// Adds a child while each of the requests for memory that this takes fails in turn, and expects
/// that nothing shows of the failures.
void ExpectUnchangedByFailures(Children& children, const char* name) {
    const std::string before = Describe(children);
    const bool wasEmpty = children.IsEmpty();
    std::size_t requests = 0;
    for (bool isAdded = false; !isAdded; ++requests) {
        SCOPED_TRACE(std::to_string(requests));
        {
            const TestSupport::FailingRequest failing(requests);
            try {
                children.Add(name);
                isAdded = true;
            } catch (const std::bad_alloc&) {
                EXPECT_TRUE(failing.HasFailed());
            }
        }
        if (!isAdded) {
            EXPECT_EQ(Describe(children), before);
            EXPECT_EQ(children.IsEmpty(), wasEmpty);
        }
    }
    EXPECT_GT(requests, 1U) << "no request for memory has failed";
}

TEST(ChildrenTest, AddThatFindsNoMemoryLeavesTheListAsItWas) {
    const char* const longName = "a name that is too long to be stored in the string object itself";
    for (const char* const name : {"a", longName}) {
        SCOPED_TRACE(name);
        Children children;
        ExpectUnchangedByFailures(children, name);
        ExpectUnchangedByFailures(children, name);
        ExpectUnchangedByFailures(children, "b");
        EXPECT_EQ(Describe(children), std::string(name) + " " + name + " b ");
    }
}

TEST(ChildrenTest, AddThatFindsNoMemoryLeavesASharedListAsItWas) {
    Children children;
    AddWithText(children, "a", "1");
    const Children snapshot = children;
    const std::weak_ptr<Node> shared = (*children.begin()).node;
    for (const char* const name : {"a", "b"}) {
        ExpectUnchangedByFailures(children, name);
        EXPECT_EQ(shared.use_count(), 2) << "one for each of the two lists";
    }
    EXPECT_EQ(Describe(children), "a1 a b ");
    EXPECT_EQ(Describe(snapshot), "a1 ");
}

TEST(ChildrenTest, TreeIsWrittenAfterAnAddThatFoundNoMemory) {
    for (std::size_t requests = 0; requests < 10; ++requests) {
        SCOPED_TRACE(requests);
        Base document;
        Node* const root = document.GetTopNode()->AddChild("root");
        {
            const TestSupport::FailingRequest failing(requests);
            try {
                root->AddChild("a");
            } catch (const std::bad_alloc&) {
                EXPECT_TRUE(root->GetChildren().IsEmpty());
            }
        }
        std::ostringstream stream;
        Writer writer(stream);
        document.Save(writer);
        const std::string inside =
            root->GetChildren().IsEmpty() ? "<root/>" : "<root>\n\t<a/>\n</root>";
        EXPECT_EQ(stream.str(), "<?xml version=\"1.0\" ?>\n" + inside + "\n");
    }
}

} // namespace
} // namespace XML
