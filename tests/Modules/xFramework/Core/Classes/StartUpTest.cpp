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

TEST(StartUp, EveryTypeNameCreatesItsElementType) {
    struct {
        const char* name;
        bool (*createsItsType)(const std::string& name);
    } const cases[] = {{"int", Creates<Int>},       {"long", Creates<Long>},
                       {"short", Creates<Int16>},   {"string", Creates<std::string>},
                       {"double", Creates<double>}, {"bool", Creates<bool>},
                       {"uint8", Creates<UInt8>},   {"uint16", Creates<UInt16>},
                       {"uint32", Creates<UInt32>}, {"uint64", Creates<UInt64>},
                       {"int8", Creates<Int8>},     {"int16", Creates<Int16>},
                       {"int32", Creates<Int>},     {"int64", Creates<Int64>}};
    for (const auto& row : cases) {
        SCOPED_TRACE(row.name);
        EXPECT_TRUE(row.createsItsType(row.name));
        ITypeDescriptor* const descriptor = Factory().GetTypeDescriptor(row.name);
        ASSERT_NE(descriptor, nullptr);
        EXPECT_TRUE(row.createsItsType(row.name));
        EXPECT_TRUE(descriptor->GetMetaType().HasName(row.name));
    }
}

TEST(StartUp, NoOtherTypeNameExists) {
    for (const char* const name : {"float", "char", "set", "Int", ""}) {
        SCOPED_TRACE(name);
        EXPECT_FALSE(Factory().IsRegistered(name));
        EXPECT_EQ(Factory().GetTypeDescriptor(name), nullptr);
    }
}

template <typename T>
std::set<std::string> NamesOf() {
    return Utilities::Singleton<CoreTypes::MetaType<T>>::Instance().GetNames();
}

TEST(StartUp, MetaTypesKnowTheirNames) {
    EXPECT_EQ(NamesOf<Int>(), (std::set<std::string>{"int", "int32"}));
    EXPECT_EQ(NamesOf<Int16>(), (std::set<std::string>{"int16", "short"}));
    EXPECT_EQ(NamesOf<Long>(), (std::set<std::string>{"long"}));
    EXPECT_EQ(NamesOf<std::string>(), (std::set<std::string>{"string"}));
}

TEST(StartUp, RootNamespaceHoldsTheServiceDomain) {
    EXPECT_NE(
        dynamic_cast<ServiceDomain*>(Utilities::Singleton<Namespace>::Instance().Find("Services")),
        nullptr);
}

TEST(StartUp, MessagesExpandVariables) {
    GlobalVariables().Add("StartUpTest", new Value("expanded"));
    EXPECT_EQ(Utilities::Format("[$(StartUpTest)]").Text(), "[expanded]");
    GlobalVariables().Remove("StartUpTest");
}

TEST(StartUp, EveryLevelOfTheLogReachesTheDebuggerOutputInBriefLines) {
    OSAL::Fake::Reset();
    for (const std::uint32_t level : {1U, 2U, 4U, 8U})
        Utilities::Log(level, "file", 1, "function", "message");
    const std::string rest = "| function" + std::string(32, ' ') + " | message\n";
    EXPECT_EQ(OSAL::Fake::TheWorld().debugOutput,
              (std::vector<std::string>{"[OEMERROR]" + rest, "[OEMWARNING]" + rest,
                                        "[OEMINFO] " + rest, "[OEMTRACE]" + rest}));
}

} // namespace
