#include "Modules/xFramework/Core/Classes/Namespace.h"

#include "Modules/xFramework/Core/Classes/IInterface.h"
#include "Modules/xFramework/Utilities/Singleton.h"
#include "tests/Modules/xFramework/Core/Classes/LiveObject.h"
#include "tests/Modules/xFramework/Utilities/RaisedBy.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

namespace {

using namespace Core;

class CountedObject : public LiveObject, public virtual IReferenceableObject {
public:
    std::int32_t AddRef() override { return ++m_count; }
    std::int32_t Release() override { return --m_count; }

private:
    std::int32_t m_count = 0;
};

std::string NamesIn(IEnumerator& enumerator) {
    std::string names;
    while (enumerator.Next() != nullptr)
        names += "[" + enumerator.GetName() + "]";
    return names;
}

TEST(NamespaceTest, GivesWhatWasEntered) {
    Namespace names;
    auto* const object = new LiveObject;
    names.Add("name", object);
    EXPECT_EQ(names.Find("name"), object);
    EXPECT_EQ(names.Find("Name"), nullptr);
    EXPECT_EQ(names.Find(""), nullptr);
}

TEST(NamespaceTest, ReleasesItsEntriesWithItself) {
    {
        Namespace names;
        names.Add("a", new LiveObject);
        names.Add("b", new LiveObject);
        EXPECT_EQ(LiveObject::Alive(), 2);
    }
    EXPECT_EQ(LiveObject::Alive(), 0);
}

TEST(NamespaceTest, LaterObjectReplacesAndReleasesTheEarlier) {
    Namespace names;
    names.Add("name", new LiveObject);
    auto* const later = new LiveObject;
    names.Add("name", later);
    EXPECT_EQ(LiveObject::Alive(), 1);
    EXPECT_EQ(names.Find("name"), later);
}

TEST(NamespaceTest, ObjectEnteredAgainUnderItsNameStays) {
    Namespace names;
    auto* const object = new LiveObject;
    names.Add("name", object);
    names.Add("name", object);
    EXPECT_EQ(LiveObject::Alive(), 1);
    EXPECT_EQ(names.Find("name"), object);
}

TEST(NamespaceTest, RemoveReleasesAndTellsWhetherThereWasAnEntry) {
    Namespace names;
    names.Add("name", new LiveObject);
    EXPECT_TRUE(names.Remove("name"));
    EXPECT_EQ(LiveObject::Alive(), 0);
    EXPECT_FALSE(names.Remove("name"));
}

TEST(NamespaceTest, NoObjectIsAnAssertionFailureAtItsTruePlace) {
    Namespace names;
    const std::string raised = RaisedBy([&names] { names.Add("name", nullptr); });
    const std::string before = "Assertion (pObject) failed at Core::Namespace::Add | "
                               "src/Modules/xFramework/Core/Classes/Namespace:";
    ASSERT_TRUE(raised.starts_with(before)) << raised;
    EXPECT_TRUE(raised.ends_with(" | Core::Namespace::Add")) << raised;
    EXPECT_EQ(NamesIn(*names.CreateEnumerator()), "");

    std::ifstream source(NAMESPACE_SOURCE);
    std::string line;
    for (int number = std::stoi(raised.substr(before.size())); number > 0; --number)
        ASSERT_TRUE(std::getline(source, line));
    EXPECT_NE(line.find("\"pObject\""), std::string::npos) << line;
}

TEST(NamespaceTest, CountedObjectLivesUntilItsLastNamespaceReleasesIt) {
    Namespace first;
    {
        Namespace second;
        auto* const object = new CountedObject;
        first.Add("a", object);
        first.Add("b", object);
        second.Add("c", object);
    }
    EXPECT_EQ(LiveObject::Alive(), 1);
    first.Remove("a");
    EXPECT_EQ(LiveObject::Alive(), 1);
    first.Remove("b");
    EXPECT_EQ(LiveObject::Alive(), 0);
}

TEST(NamespaceTest, PathLeadsThroughNestedNamespaces) {
    Namespace root;
    auto* const inner = new Namespace;
    auto* const innermost = new Namespace;
    auto* const object = new LiveObject;
    root.Add("a", inner);
    inner->Add("b", innermost);
    innermost->Add("c", object);
    struct {
        const char* path;
        IInterface* found;
    } const cases[] = {{"a.b/c", object}, {"a b c", object},    {"a.b", innermost},
                       {"a.", inner},     {"a.b.c.d", nullptr}, {"a..b", nullptr},
                       {".a", nullptr},   {"b", nullptr},       {"", nullptr}};
    for (const auto& row : cases) {
        SCOPED_TRACE(row.path);
        EXPECT_EQ(root.FindByPath(row.path), row.found);
    }
}

TEST(NamespaceTest, NameIsTakenAsItIsOutsidePaths) {
    Namespace names;
    auto* const object = new LiveObject;
    names.Add("a.b", object);
    EXPECT_EQ(names.Find("a.b"), object);
    EXPECT_EQ(names.FindByPath("a.b"), nullptr);
}

TEST(NamespaceTest, EnumeratorWalksInTheOrderOfNames) {
    Namespace names;
    for (const char* const name : {"b", "", "c", "a"})
        names.Add(name, new LiveObject);
    const std::unique_ptr<IEnumerator> enumerator = names.CreateEnumerator();
    EXPECT_EQ(NamesIn(*enumerator), "[][a][b][c]");
    EXPECT_EQ(enumerator->Next(), nullptr);
    enumerator->Reset();
    EXPECT_EQ(enumerator->GetName(), "");
    EXPECT_EQ(NamesIn(*enumerator), "[][a][b][c]");
}

TEST(NamespaceTest, EnumeratorSurvivesChangesOfTheNamespace) {
    Namespace names;
    names.Add("a", new LiveObject);
    names.Add("c", new LiveObject);
    const std::unique_ptr<IEnumerator> enumerator = names.CreateEnumerator();
    EXPECT_EQ(enumerator->Next(), names.Find("a"));
    names.Remove("a");
    names.Add("b", new LiveObject);
    EXPECT_EQ(NamesIn(*enumerator), "[b][c]");
}

TEST(NamespaceTest, KnowsTheNamespaceThatItIsIn) {
    Namespace root;
    auto* const inner = new Namespace;
    EXPECT_EQ(inner->GetOwner(), nullptr);
    root.Add("inner", inner);
    EXPECT_EQ(inner->GetOwner(), &root);
}

/// An attachable object whose life does not depend on namespaces.
class AttachableCounted : public CountedObject, public AttachableObject {};

TEST(NamespaceTest, TakesItselfOutOfWhatItReleases) {
    AttachableCounted object;
    object.AddRef();
    Namespace first;
    Namespace second;
    first.Add("a", &object);
    second.Add("a", &object);
    first.Remove("a");
    EXPECT_EQ(object.GetOwner(), &second);
    second.Add("a", new LiveObject);
    EXPECT_EQ(object.GetOwner(), nullptr);
}

/// Notes the namespace that it is in when it is destroyed.
class LastOwnerNoter : public AttachableObject {
public:
    explicit LastOwnerNoter(std::vector<INamespace*>& owners) : m_owners(owners) {}
    ~LastOwnerNoter() override { m_owners.push_back(GetOwner()); }
    LastOwnerNoter(const LastOwnerNoter&) = delete;
    LastOwnerNoter& operator=(const LastOwnerNoter&) = delete;

private:
    std::vector<INamespace*>& m_owners;
};

TEST(NamespaceTest, TakesItselfOutOfWhatItDeletes) {
    std::vector<INamespace*> owners;
    {
        Namespace names;
        for (const char* const name : {"removed", "replaced", "left"})
            names.Add(name, new LastOwnerNoter(owners));
        names.Remove("removed");
        names.Add("replaced", new LiveObject);
    }
    EXPECT_EQ(owners, (std::vector<INamespace*>{nullptr, nullptr, nullptr}));
}

/// Asks the namespace that it is in, while it is destroyed.
class Asking : public virtual IInterface {
public:
    explicit Asking(Namespace& names) : m_names(names) {}
    ~Asking() override { EXPECT_EQ(m_names.Find("a"), nullptr); }

private:
    Namespace& m_names;
};

TEST(NamespaceTest, EntryThatIsBeingReleasedIsNotFoundAnyMore) {
    Namespace names;
    names.Add("a", new Asking(names));
    names.Add("b", new Asking(names));
}

TEST(NamespaceTest, OneObjectHasOneRoot) {
    Namespace names;
    EXPECT_EQ(static_cast<IInterface*>(static_cast<IAttachableObject*>(&names)),
              static_cast<IInterface*>(static_cast<IDynamicNamespace*>(&names)));
    EXPECT_EQ(static_cast<INamespace*>(static_cast<ANamespace*>(&names)),
              static_cast<INamespace*>(static_cast<IDynamicNamespace*>(&names)));
}

TEST(NamespaceTest, RootAndGlobalVariablesAreTwo) {
    EXPECT_EQ(&GlobalVariables(), &GlobalVariables());
    EXPECT_NE(&GlobalVariables(), &Utilities::Singleton<Namespace>::Instance());
}

} // namespace
