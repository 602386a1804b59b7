#include "Modules/xFramework/XML/Base.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <stdexcept>
#include <string>

namespace XML {
namespace {

/// Writes the events down, and may do something at the start of an element.
class EventRecorder : public IListener {
public:
    void StartDocument() override { m_events += "{ "; }
    void EndDocument() override { m_events += "}"; }
    void Abort() override { m_events += "abort "; }
    void StartElement(const char* name) override {
        m_events += std::string("<") + name + " ";
        m_onStart(name);
    }
    void EndElement() override { m_events += "> "; }
    void Attribute(const char* name, const char* value) override {
        m_events += std::string(name) + "=" + value + " ";
    }
    void Text(const char* text) override { m_events += std::string("'") + text + "' "; }

    std::string m_events;
    std::function<void(const std::string&)> m_onStart = [](const std::string&) {};
};

std::string Replay(const Base& document) {
    EventRecorder recorder;
    document.Save(recorder);
    return recorder.m_events;
}

TEST(BaseTest, TopNodeIsTheSameOnEveryAccess) {
    Base document;
    Node* top = document.GetTopNode();

    ASSERT_NE(top, nullptr);
    EXPECT_EQ(document.GetTopNode(), top);
}

TEST(BaseTest, DocumentWithoutElementsReplaysStartAndEnd) {
    Base document;
    EXPECT_EQ(Replay(document), "{ }");
    document.GetTopNode();
    EXPECT_EQ(Replay(document), "{ }");
}

TEST(BaseTest, AttributesAndTextOfTheTopNodeAreNotReplayed) {
    Base document;
    document.GetTopNode()->SetAttribute("a", "1");
    document.GetTopNode()->SetText("text");
    document.GetTopNode()->AddChild("x");

    EXPECT_EQ(Replay(document), "{ <x > }");
}

TEST(BaseTest, ElementReplaysAttributesThenTextThenChildren) {
    Base document;
    Node* node = document.GetTopNode()->AddChild("x");
    node->AddChild("b")->SetText("t");
    node->AddChild("a")->AddChild("deep");
    node->SetText("text");
    node->SetAttribute("z", "1");
    node->SetAttribute("y", "2");
    document.GetTopNode()->AddChild("next");

    EXPECT_EQ(Replay(document), "{ <next > <x y=2 z=1 'text' <a <deep > > <b 't' > > }");
}

TEST(BaseTest, SeveralTopLevelElementsOfOneNameKeepTheirOrder) {
    Base document;
    for (const char* value : {"2", "1", "3"})
        document.GetTopNode()->AddChild("x")->SetAttribute("v", value);

    EXPECT_EQ(Replay(document), "{ <x v=2 > <x v=1 > <x v=3 > }");
}

TEST(BaseTest, ChildAddedWhileItsParentsChildrenAreReplayedIsLeftOut) {
    Base document;
    Node* parent = document.GetTopNode()->AddChild("p");
    parent->AddChild("a");
    parent->AddChild("c");
    EventRecorder recorder;
    recorder.m_onStart = [parent](const std::string& name) {
        if (name == "a")
            parent->AddChild("b");
    };
    document.Save(recorder);

    EXPECT_EQ(recorder.m_events, "{ <p <a > <c > > }");
    EXPECT_EQ(Replay(document), "{ <p <a > <b > <c > > }");
}

TEST(BaseTest, ExceptionOfTheListenerEndsTheReplay) {
    Base document;
    document.GetTopNode()->AddChild("a");
    document.GetTopNode()->AddChild("b");
    EventRecorder recorder;
    recorder.m_onStart = [](const std::string&) { throw std::runtime_error("full"); };

    EXPECT_THROW(document.Save(recorder), std::runtime_error);
    EXPECT_EQ(recorder.m_events, "{ <a ");
}

/// Counts instead of keeping.
class DepthMeter : public IListener {
public:
    void StartDocument() override {}
    void EndDocument() override {}
    void Abort() override {}
    void StartElement(const char*) override { m_deepest = std::max(m_deepest, ++m_depth); }
    void EndElement() override { --m_depth; }
    void Attribute(const char*, const char*) override {}
    void Text(const char*) override {}

    int m_depth = 0;
    int m_deepest = 0;
};

TEST(BaseTest, DeepTreeIsReplayedWithoutRecursion) {
    constexpr int depth = 250'000;
    Base document;
    Node* node = document.GetTopNode();
    for (int level = 0; level < depth; ++level)
        node = node->AddChild("a");
    DepthMeter meter;
    document.Save(meter);

    EXPECT_EQ(meter.m_deepest, depth);
    EXPECT_EQ(meter.m_depth, 0);
}

} // namespace
} // namespace XML
