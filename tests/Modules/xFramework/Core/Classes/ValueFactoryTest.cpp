#include "Modules/xFramework/Core/Classes/ValueFactory.h"

#include "tests/Modules/xFramework/Core/Classes/LiveObject.h"

#include <gtest/gtest.h>

#include <functional>

namespace {

using namespace Core;

class ValueFactoryTest : public testing::Test {
protected:
    ValueFactoryTest() {
        m_factory.Register<Int>("number");
        m_factory.Register<std::string>("text");
        m_factory.Register("object", std::make_unique<ClassCreator<LiveObject, IInterface>>());
    }
    ValueFactory m_factory;
};

template <typename T>
T ElementOf(const std::unique_ptr<IValue>& object) {
    return dynamic_cast<ITypedValue<T>&>(*object).GetRef();
}

TEST_F(ValueFactoryTest, CreatesAValueByTypeNameAndText) {
    const auto object = m_factory.Create("number", "0x10");
    EXPECT_EQ(ElementOf<Int>(object), 16);
    EXPECT_EQ(object->GetRefCount(), 0);
    EXPECT_EQ(ElementOf<std::string>(m_factory.Create("text", "0x10")), "0x10");
}

TEST_F(ValueFactoryTest, UnreadableTextLeavesTheDefaultElement) {
    EXPECT_EQ(ElementOf<Int>(m_factory.Create("number", "x")), 0);
    EXPECT_EQ(ElementOf<Int>(m_factory.Create("number", "")), 0);
}

TEST_F(ValueFactoryTest, UnknownTypeAndOtherObjectsGiveNoValue) {
    EXPECT_EQ(m_factory.Create("Number", "1"), nullptr);
    EXPECT_EQ(m_factory.Create("object", "1"), nullptr);
    EXPECT_EQ(m_factory.CreateFromExpression("{object:1}"), nullptr);
    EXPECT_EQ(LiveObject::Alive(), 0);
}

TEST_F(ValueFactoryTest, CanCreateATypedLiteralWithARegisteredTypeAndAText) {
    struct {
        const char* expression;
        bool canCreate;
    } const cases[] = {{"{number:7}", true},
                       {"{number:x}", true},
                       {"{text:a:b}", true},
                       {"{number:}", false},
                       {"{nosuchtype:1}", false},
                       {"{number}", false},
                       {"number", false},
                       {"{}", false},
                       {"", false}};
    for (const auto& row : cases) {
        SCOPED_TRACE(row.expression);
        EXPECT_EQ(m_factory.CanCreate(row.expression), row.canCreate);
    }
}

TEST_F(ValueFactoryTest, CreatesFromATypedLiteral) {
    EXPECT_EQ(ElementOf<Int>(m_factory.CreateFromExpression("{number:7}")), 7);
    EXPECT_EQ(ElementOf<Int>(m_factory.CreateFromExpression("{number:x}")), 0);
    EXPECT_EQ(ElementOf<std::string>(m_factory.CreateFromExpression("{text:a:b}")), "a:b");
    EXPECT_EQ(m_factory.CreateFromExpression("{nosuchtype:1}"), nullptr);
}

TEST_F(ValueFactoryTest, ExpressionWithoutValueTextNamesATypeAsAWhole) {
    EXPECT_EQ(ElementOf<Int>(m_factory.CreateFromExpression("{number}")), 0);
    EXPECT_EQ(ElementOf<Int>(m_factory.CreateFromExpression("number")), 0);
    EXPECT_EQ(m_factory.CreateFromExpression("number:7"), nullptr);
    EXPECT_EQ(m_factory.CreateFromExpression(""), nullptr);
}

template <typename T>
CoreTypes::IMetaType& MetaTypeOf() {
    return Utilities::Singleton<CoreTypes::MetaType<T>>::Instance();
}

TEST_F(ValueFactoryTest, RegistrationAddsADescriptor) {
    ITypeDescriptor* const descriptor = m_factory.GetTypeDescriptor("number");
    ASSERT_NE(descriptor, nullptr);
    EXPECT_EQ(&descriptor->GetMetaType(), &MetaTypeOf<Int>());
    EXPECT_EQ(m_factory.GetTypeDescriptor("object"), nullptr);
    EXPECT_EQ(m_factory.GetTypeDescriptor("nosuchtype"), nullptr);
}

TEST_F(ValueFactoryTest, NameRegisteredAgainMeansTheLaterType) {
    m_factory.Register<Int>("again");
    m_factory.Register<bool>("again");
    EXPECT_EQ(ElementOf<bool>(m_factory.Create("again", "1")), true);
    EXPECT_EQ(&m_factory.GetTypeDescriptor("again")->GetMetaType(), &MetaTypeOf<bool>());
}

TEST_F(ValueFactoryTest, NamesOfAFactoryOfOnesOwnDoNotReachTheMetaTypes) {
    const std::set<std::string> names = MetaTypeOf<Int>().GetNames();
    EXPECT_EQ(names.count("number"), 0U);
    m_factory.Register<Int>("more");
    EXPECT_EQ(MetaTypeOf<Int>().GetNames(), names);
    // Names that the process's factory gives as well.
    m_factory.Register<Int>("int");
    m_factory.Register<bool>("int");
    m_factory.Register("int", nullptr);
    EXPECT_EQ(MetaTypeOf<Int>().GetNames(), names);
    EXPECT_FALSE(MetaTypeOf<bool>().HasName("int"));
}

/// The process's factory; takes the name out in the end.
class ValueFactoryProcessTest : public testing::Test {
protected:
    ~ValueFactoryProcessTest() override { m_factory.Register("again", nullptr); }

    ValueFactory& m_factory = Utilities::Singleton<ValueFactory>::Instance();
};

TEST_F(ValueFactoryProcessTest, TellsTheMetaTypesItsNames) {
    m_factory.Register<Int>("again");
    EXPECT_TRUE(MetaTypeOf<Int>().HasName("again"));
    m_factory.Register<bool>("again");
    EXPECT_FALSE(MetaTypeOf<Int>().HasName("again"));
    EXPECT_TRUE(MetaTypeOf<bool>().HasName("again"));
}

TEST_F(ValueFactoryProcessTest, NameRegisteredAgainWithACreatorMeansNoElementType) {
    using Creator = ClassCreator<TypedValue<bool>, IValue>;
    struct {
        const char* entry;
        std::function<void()> registerAgain;
    } const cases[] = {
        {"Register", [this] { m_factory.Register("again", std::make_unique<Creator>()); }},
        {"RegisterCreator",
         [this] { m_factory.RegisterCreator("again", std::make_unique<Creator>()); }},
        {"Register of the interface",
         [this] {
             IClassFactory& factory = m_factory;
             factory.Register("again", std::make_unique<Creator>());
         }},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.entry);
        m_factory.Register<Int>("again");
        row.registerAgain();
        EXPECT_EQ(ElementOf<bool>(m_factory.Create("again", "1")), true);
        EXPECT_EQ(m_factory.GetTypeDescriptor("again"), nullptr);
        EXPECT_FALSE(MetaTypeOf<Int>().HasName("again"));
    }
}

TEST_F(ValueFactoryTest, IsOneServiceAndOneFactory) {
    EXPECT_EQ(static_cast<IService*>(static_cast<Service*>(&m_factory)),
              static_cast<IService*>(static_cast<IDynamicFactory<IValue>*>(&m_factory)));
    EXPECT_FALSE(m_factory.IsAttached());
}

TEST(ValueFactoryLiteralTest, IsSplitAtTheFirstColonInTheBraces) {
    struct {
        const char* text;
        const char* typeName;
        const char* valueText;
    } const cases[] = {{"{int:7}", "int", "7"},
                       {"{string:a:b}", "string", "a:b"},
                       {"{int:}", "int", ""},
                       {"{int}", "int", ""},
                       {"{:7}", "", "7"},
                       {"{}", "", ""},
                       {"", "", ""},
                       {"int:7", "int:7", ""},
                       {"{int:7", "{int:7", ""},
                       {"int:7}", "int:7}", ""},
                       {"{", "{", ""},
                       {"}", "}", ""},
                       {"{ int : 7 }", " int ", " 7 "},
                       {"{{int:7}}", "{int", "7}"}};
    for (const auto& row : cases) {
        SCOPED_TRACE(row.text);
        const Core::TypedLiteral literal = Core::SplitTypedLiteral(row.text);
        EXPECT_EQ(literal.typeName, row.typeName);
        EXPECT_EQ(literal.valueText, row.valueText);
    }
}

} // namespace
