#include "Modules/xFramework/Core/Classes/ServiceDomain.h"
#include "Modules/xFramework/Core/Classes/ValueFactory.h"
#include "Modules/xFramework/Utilities/Format.h"
#include "Modules/xFramework/Utilities/Log.h"
#include "Modules/xFramework/Utilities/Singleton.h"
#include "tests/Modules/xFramework/OSAL/Fake/World.h"

#include <gtest/gtest.h>

// This program links StartUp and calls nothing of it: what these tests find has been done before
// main.

namespace {

using namespace Core;

ValueFactory& Factory() {
    return Utilities::Singleton<ValueFactory>::Instance();
}

template <typename T>
bool Creates(const std::string& name) {
    return dynamic_cast<TypedValue<T>*>(Factory().Create(name, "1").get()) != nullptr;
}

template <typename T>
bool Describes(ITypeDescriptor& descriptor) {
    return dynamic_cast<TypedValue<T>*>(descriptor.CreateValue().Get()) != nullptr;
}

struct TypeName {
    const char* name;
    bool (*createsItsType)(const std::string& name);
    bool (*describesItsType)(ITypeDescriptor& descriptor);
};

template <typename T>
constexpr TypeName NameOf(const char* name) {
    return {name, Creates<T>, Describes<T>};
}

TEST(StartUpTest, EveryTypeNameCreatesItsElementType) {
    const TypeName cases[] = {NameOf<Int>("int"),       NameOf<Long>("long"),
                              NameOf<Int16>("short"),   NameOf<std::string>("string"),
                              NameOf<double>("double"), NameOf<bool>("bool"),
                              NameOf<UInt8>("uint8"),   NameOf<UInt16>("uint16"),
                              NameOf<UInt32>("uint32"), NameOf<UInt64>("uint64"),
                              NameOf<Int8>("int8"),     NameOf<Int16>("int16"),
                              NameOf<Int>("int32"),     NameOf<Int64>("int64")};
    for (const auto& row : cases) {
        SCOPED_TRACE(row.name);
        EXPECT_TRUE(row.createsItsType(row.name));
        ITypeDescriptor* const descriptor = Factory().GetTypeDescriptor(row.name);
        ASSERT_NE(descriptor, nullptr);
        EXPECT_TRUE(row.describesItsType(*descriptor));
        EXPECT_TRUE(descriptor->GetMetaType().HasName(row.name));
    }
}

TEST(StartUpTest, NoOtherTypeNameExists) {
    for (const char* const name : {"float", "char", "set", "Int", ""}) {
        SCOPED_TRACE(name);
        EXPECT_FALSE(Factory().IsRegistered(name));
        EXPECT_EQ(Factory().GetTypeDescriptor(name), nullptr);
        const std::string literal = "{" + std::string(name) + ":1}";
        EXPECT_EQ(Value(literal).GetRef<std::string>(), literal);
    }
}

template <typename T>
std::set<std::string> NamesOf() {
    return Utilities::Singleton<CoreTypes::MetaType<T>>::Instance().GetNames();
}

TEST(StartUpTest, MetaTypesKnowTheirNames) {
    EXPECT_EQ(NamesOf<Int>(), (std::set<std::string>{"int", "int32"}));
    EXPECT_EQ(NamesOf<Int16>(), (std::set<std::string>{"int16", "short"}));
    EXPECT_EQ(NamesOf<Long>(), (std::set<std::string>{"long"}));
    EXPECT_EQ(NamesOf<std::string>(), (std::set<std::string>{"string"}));
}

TEST(StartUpTest, RootNamespaceHoldsTheServiceDomain) {
    EXPECT_NE(
        dynamic_cast<ServiceDomain*>(Utilities::Singleton<Namespace>::Instance().Find("Services")),
        nullptr);
}

TEST(StartUpTest, MessagesExpandVariables) {
    GlobalVariables().Add("StartUpTest", new Value("expanded"));
    EXPECT_EQ(Utilities::Format("[$(StartUpTest)]").Text(), "[expanded]");
    GlobalVariables().Remove("StartUpTest");
}

TEST(StartUpTest, EveryLevelOfTheLogReachesTheDebuggerOutputInBriefLines) {
    OSAL::Fake::Reset();
    // 16 is no level of the channel's mask.
    for (const std::uint32_t level : {1U, 2U, 4U, 16U, 8U})
        Utilities::Log(level, "file", 1, "function", "message");
    const std::string rest = "| function" + std::string(32, ' ') + " | message\n";
    EXPECT_EQ(OSAL::Fake::TheWorld().debugOutput,
              (std::vector<std::string>{"[OEMERROR]" + rest, "[OEMWARNING]" + rest,
                                        "[OEMINFO] " + rest, "[OEMTRACE]" + rest}));
}

} // namespace
