#include "Modules/xFramework/Core/Classes/ClassFactory.h"

#include "tests/Modules/xFramework/Core/Classes/LiveObject.h"

#include <gtest/gtest.h>

#include <type_traits>

namespace {

using namespace Core;

class OtherObject : public LiveObject {};

template <typename T>
std::unique_ptr<IClassCreator<>> Creator() {
    return std::make_unique<ClassCreator<T, IInterface>>();
}

TEST(ClassFactoryTest, MakesANewObjectByName) {
    ClassFactory factory;
    factory.Register("live", Creator<LiveObject>());
    const auto first = factory.CreateInstance("live");
    const auto second = factory.CreateInstance("live");
    EXPECT_NE(first, second);
    EXPECT_NE(dynamic_cast<LiveObject*>(first.get()), nullptr);
}

TEST(ClassFactoryTest, UnknownNameGivesNothing) {
    ClassFactory factory;
    factory.Register("live", Creator<LiveObject>());
    EXPECT_FALSE(factory.IsRegistered("Live"));
    EXPECT_EQ(factory.GetCreator("Live"), nullptr);
    EXPECT_EQ(factory.CreateInstance("Live"), nullptr);
    EXPECT_TRUE(factory.IsRegistered("live"));
}

TEST(ClassFactoryTest, GivesTheCreatorThatWasRegistered) {
    ClassFactory factory;
    auto creator = Creator<LiveObject>();
    const IClassCreator<>* const registered = creator.get();
    factory.Register("live", std::move(creator));
    EXPECT_EQ(factory.GetCreator("live").get(), registered);
}

TEST(ClassFactoryTest, LaterCreatorReplacesTheEarlier) {
    ClassFactory factory;
    factory.Register("name", Creator<LiveObject>());
    factory.Register("name", Creator<OtherObject>());
    EXPECT_NE(dynamic_cast<OtherObject*>(factory.CreateInstance("name").get()), nullptr);
}

class CountedCreator : public AClassCreator<IInterface>, public LiveObject {
public:
    std::unique_ptr<IInterface> Create() override { return nullptr; }
};

TEST(ClassFactoryTest, NullTakesTheNameOut) {
    ClassFactory factory;
    factory.Register("name", std::make_unique<ClassCreator<LiveObject, IInterface>>());
    factory.Register("name", nullptr);
    EXPECT_FALSE(factory.IsRegistered("name"));
    EXPECT_EQ(factory.GetCreator("name"), nullptr);
    EXPECT_EQ(factory.CreateInstance("name"), nullptr);
}

TEST(ClassFactoryTest, ReplacedCreatorIsDeleted) {
    ClassFactory factory;
    factory.Register("name", std::make_unique<CountedCreator>());
    factory.Register("name", Creator<LiveObject>());
    EXPECT_EQ(LiveObject::Alive(), 0);
}

/// Replaces itself in the factory while it is at work.
class Resigning : public CountedCreator {
public:
    explicit Resigning(ClassFactory& factory) : m_factory(factory) {}
    std::unique_ptr<IInterface> Create() override {
        m_factory.Register("name", Creator<LiveObject>());
        EXPECT_EQ(Alive(), 1);
        return std::make_unique<OtherObject>();
    }

private:
    ClassFactory& m_factory;
};

TEST(ClassFactoryTest, CreatorAtWorkOutlivesItsReplacement) {
    ClassFactory factory;
    factory.Register("name", std::make_unique<Resigning>(factory));
    EXPECT_NE(dynamic_cast<OtherObject*>(factory.CreateInstance("name").get()), nullptr);
    EXPECT_EQ(LiveObject::Alive(), 0);
}

TEST(ClassFactoryTest, IsOneService) {
    ClassFactory factory;
    EXPECT_EQ(static_cast<IService*>(static_cast<Service*>(&factory)),
              static_cast<IService*>(static_cast<IClassFactory*>(&factory)));
    EXPECT_FALSE(factory.IsAttached());
}

template <typename Base, typename Derived>
constexpr bool isAbstractBase = std::is_base_of_v<Base, Derived>&& std::is_abstract_v<Base>;

TEST(ClassFactoryCreatorTest, AbstractBaseDerivesFromTheInterface) {
    using Interface = IClassCreator<LiveObject>;
    using Base = AClassCreator<LiveObject>;
    EXPECT_TRUE((isAbstractBase<IClassCreator<>, Interface>));
    EXPECT_TRUE((isAbstractBase<Interface, Base>));
    EXPECT_TRUE((isAbstractBase<Base, ClassCreator<OtherObject, LiveObject>>));
}

TEST(ClassFactoryCreatorTest, MakesTheSameWhetherOrNotItsTypeIsSeen) {
    ClassCreator<OtherObject, LiveObject> creator;
    IClassCreator<LiveObject>& typed = creator;
    IClassCreator<>& untyped = creator;
    EXPECT_NE(dynamic_cast<OtherObject*>(typed.Create().get()), nullptr);
    EXPECT_NE(dynamic_cast<OtherObject*>(untyped.CreateObject().get()), nullptr);
}

using LiveFactory = DynamicFactory<LiveObject, GenericFactory<LiveObject, ClassFactory>>;

TEST(ClassFactoryDynamicTest, GivesObjectsInTheirOfferedType) {
    LiveFactory factory;
    factory.RegisterCreator("name", std::make_unique<ClassCreator<OtherObject, LiveObject>>());
    const std::unique_ptr<LiveObject> object = factory.CreateTyped("name");
    EXPECT_NE(dynamic_cast<OtherObject*>(object.get()), nullptr);
}

TEST(ClassFactoryDynamicTest, ObjectOfAnotherTypeIsNotGivenButDeleted) {
    GenericFactory<Service, ClassFactory> factory;
    factory.Register("live", Creator<LiveObject>());
    EXPECT_EQ(factory.CreateTyped("live"), nullptr);
    EXPECT_EQ(factory.CreateTyped("unknown"), nullptr);
    EXPECT_EQ(LiveObject::Alive(), 0);
}

} // namespace
