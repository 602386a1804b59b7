// Property: the text of any tree is, byte for byte, what a plain writer of the layout puts out;
// where names and texts hold no markup, a reader of XML finds the same tree in it. A tree of any
// depth is replayed, each start with its end, and deleted.
//
// Input: a tree, one step a line. "+NAME" adds a child and enters it, "-" goes back to the parent,
// "@NAME=VALUE" sets an attribute, "=TEXT" sets the text, "#deep" adds a chain of 3,000 elements;
// such a tree is replayed and deleted on a stack that a call for each of them would overflow.

#include "Modules/xFramework/XML/Base.h"
#include "Modules/xFramework/XML/Writer.h"
#include "fuzz/Support/Check.h"
#include "fuzz/Support/Input.h"

#include <pthread.h>
#include <pugixml.hpp>

#include <algorithm>
#include <map>
#include <memory>
#include <optional>
#include <sstream>

namespace {

constexpr int chainLength = 3'000;

/// The model: a tree once more, in the plainest containers.
struct Element {
    std::multimap<std::string, std::unique_ptr<Element>> children;
    std::map<std::string, std::string> attributes;
    std::string text;
};

/// The two trees, built by the same steps.
class Trees {
public:
    explicit Trees(const std::string& steps) {
        m_path.push_back({m_document->GetTopNode(), &m_top});
        for (const std::string& step : Split(steps, '\n'))
            Take(UpToNul(step));
    }

    XML::Base& Document() { return *m_document; }
    void DeleteDocument() { m_document.reset(); }
    const Element& Model() const { return m_top; }
    bool HasMarkup() const { return m_hasMarkup; }
    bool IsDeep() const { return m_isDeep; }

private:
    struct Place {
        XML::Node* node;
        Element* element;
    };

    void Take(const std::string& step) {
        const std::string rest = step.empty() ? "" : step.substr(1);
        if (step.starts_with('+'))
            Enter(rest);
        else if (step.starts_with('-') && m_path.size() > 1)
            m_path.pop_back();
        else if (step.starts_with('@'))
            SetAttribute(rest);
        else if (step.starts_with('='))
            SetText(rest);
        else if (step == "#deep")
            AddChain();
    }

    void Enter(const std::string& name) {
        constexpr std::size_t deepest = 300;
        if (m_path.size() > deepest)
            return;
        const Place parent = m_path.back();
        const auto child = parent.element->children.emplace(name, std::make_unique<Element>());
        m_path.push_back({parent.node->AddChild(name.c_str()), child->second.get()});
        m_hasMarkup = m_hasMarkup || !IsName(name);
    }

    void SetAttribute(const std::string& text) {
        const std::string name = text.substr(0, text.find('='));
        const std::string value = text.substr(std::min(name.size() + 1, text.size()));
        const Place here = m_path.back();
        here.node->SetAttribute(name.c_str(), value.c_str());
        here.element->attributes[name] = value;
        if (value.empty())
            here.element->attributes.erase(name);
        m_hasMarkup = m_hasMarkup || !IsName(name) || !IsPlain(value);
    }

    void SetText(const std::string& text) {
        m_path.back().node->SetText(text.c_str());
        m_path.back().element->text = text;
        m_hasMarkup = m_hasMarkup || !IsPlain(text);
    }

    void AddChain() {
        if (m_isDeep)
            return;
        m_isDeep = true;
        XML::Node* node = m_path.back().node;
        for (int depth = 0; depth < chainLength; ++depth)
            node = node->AddChild("chain");
    }

    static bool IsPlain(const std::string& text) {
        return text.find_first_of("<>&\"'") == std::string::npos;
    }

    static bool IsName(const std::string& text) {
        return !text.empty() && std::ranges::all_of(text, [](char character) {
            return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
        });
    }

    std::optional<XML::Base> m_document{std::in_place};
    Element m_top;
    std::vector<Place> m_path;
    bool m_hasMarkup = false;
    bool m_isDeep = false;
};

std::string Tabs(std::size_t depth) {
    return std::string(depth > 1 ? depth - 1 : 0, '\t');
}

/// The top-level elements have the depth 1.
std::string WriteElement(const std::string& name, const Element& element, std::size_t depth) {
    std::string text = "<" + name;
    for (const auto& [attribute, value] : element.attributes)
        text += " " + attribute + "=\"" + value + "\"";
    if (element.text.empty() && element.children.empty())
        return text + "/>";
    text += ">" + element.text;
    if (element.text.empty())
        text += "\n" + Tabs(depth);
    for (const auto& [childName, child] : element.children)
        text += "\t" + WriteElement(childName, *child, depth + 1) + "\n" + Tabs(depth);
    return text + "</" + name + ">";
}

std::string WritePlainly(const Element& top) {
    std::string text = "<?xml version=\"1.0\" ?>\n";
    for (const auto& [name, element] : top.children)
        text += WriteElement(name, *element, 1) + "\n";
    return text;
}

std::string Write(const XML::Base& document) {
    std::ostringstream stream;
    XML::Writer writer(stream);
    document.Save(writer);
    return stream.str();
}

void CheckChildren(const pugi::xml_node& read, const Element& element);

void CheckSame(const pugi::xml_node& read, const Element& element) {
    auto attribute = read.attributes_begin();
    for (const auto& [name, value] : element.attributes) {
        Check(attribute != read.attributes_end(), "every attribute is read back");
        CheckEqual(attribute->name() + std::string("=") + attribute->value(), name + "=" + value,
                   "an attribute is read back as it was");
        ++attribute;
    }
    Check(attribute == read.attributes_end(), "no attribute is read back that was not there");
    // The first child after a text is on the text's line, indented by one tab.
    const std::string indented = element.text + (element.children.empty() ? "" : "\t");
    if (!element.text.empty())
        CheckEqual(std::string(read.first_child().value()), indented, "a text is read back");
    CheckChildren(read, element);
}

void CheckChildren(const pugi::xml_node& read, const Element& element) {
    pugi::xml_node child = read.find_child(
        [](const pugi::xml_node& node) { return node.type() == pugi::node_element; });
    for (const auto& [name, model] : element.children) {
        CheckEqual(std::string(child.name()), name, "every child is read back, in its order");
        CheckSame(child, *model);
        do
            child = child.next_sibling();
        while (child && child.type() != pugi::node_element);
    }
    Check(!child, "no child is read back that was not there");
}

void CheckReadsBack(const std::string& text, const Element& top) {
    pugi::xml_document document;
    // White space as it is.
    const auto result =
        document.load_buffer(text.data(), text.size(), pugi::parse_minimal | pugi::parse_ws_pcdata);
    const bool isEmpty = top.children.empty();
    CheckEqual(std::string(result.description()),
               std::string(isEmpty ? "No document element found" : "No error"),
               "what is written is well formed");
    // The top node's attributes and text are never written.
    CheckChildren(document, top);
}

/// Follows a replay and writes nothing.
class Follower : public XML::IListener {
public:
    void StartDocument() override { ++m_open; }
    void EndDocument() override { --m_open; }
    void Abort() override { FailProperty("a replay does not give up", ""); }
    void StartElement(const char*) override {
        ++m_open;
        ++m_elements;
    }
    void EndElement() override { Check(--m_open > 0, "each end follows its start"); }
    void Attribute(const char*, const char* value) override {
        Check(*value != '\0', "no attribute is empty");
    }
    void Text(const char* text) override { Check(*text != '\0', "no text is empty"); }

    void CheckEnd(bool isDeep) const {
        CheckEqual(m_open, 0, "each start has its end");
        Check(!isDeep || m_elements >= chainLength, "every element is replayed");
    }

private:
    int m_open = 0;
    int m_elements = 0;
};

void CheckReplay(Trees& trees) {
    Follower follower;
    trees.Document().Save(follower);
    follower.CheckEnd(trees.IsDeep());
}

/// Replays the tree and deletes it.
void* UseDeepTree(void* trees) {
    CheckReplay(*static_cast<Trees*>(trees));
    static_cast<Trees*>(trees)->DeleteDocument();
    return nullptr;
}

/// Has 21 bytes for each element of the chain: a function that calls itself for each of them takes
/// more.
void CheckDeepTree(Trees& trees) {
    constexpr std::size_t stackSize = 64 * 1024;
    pthread_attr_t attributes;
    pthread_t thread = {};
    Check(pthread_attr_init(&attributes) == 0 &&
              pthread_attr_setstacksize(&attributes, stackSize) == 0 &&
              pthread_create(&thread, &attributes, UseDeepTree, &trees) == 0,
          "a thread with a small stack starts");
    pthread_attr_destroy(&attributes);
    pthread_join(thread, nullptr);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Trees trees(ToText(data, size));
    // The indentation of a tree takes space with the square of its depth.
    if (trees.IsDeep()) {
        CheckDeepTree(trees);
        return 0;
    }
    CheckReplay(trees);
    const std::string text = Write(trees.Document());
    CheckEqual(text, WritePlainly(trees.Model()), "the layout is the plain writer's");
    if (!trees.HasMarkup())
        CheckReadsBack(text, trees.Model());
    return 0;
}
