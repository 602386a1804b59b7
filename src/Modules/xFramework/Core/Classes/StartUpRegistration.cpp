#include "Modules/xFramework/Core/Classes/StartUpRegistration.h"

#include "Modules/xFramework/Core/Classes/ExpandVariables.h"
#include "Modules/xFramework/Core/Classes/ServiceDomain.h"
#include "Modules/xFramework/Core/Classes/ValueFactory.h"
#include "Modules/xFramework/Streams/debug_ostream.h"
#include "Modules/xFramework/SyncObjectsOSAL/CriticalSectionOSAL.h"
#include "Modules/xFramework/Utilities/BriefLogFormatter.h"
#include "Modules/xFramework/Utilities/FormatProviders.h"
#include "Modules/xFramework/Utilities/Log.h"
#include "Modules/xFramework/Utilities/LogPrinter.h"
#include "Modules/xFramework/Utilities/Singleton.h"

namespace Core {

namespace {

template <typename T>
void RegisterType(const char* name) {
    Utilities::Singleton<ValueFactory>::Instance().Register<T>(name);
}

struct TypeRegistration {
    const char* name;
    void (*registerUnder)(const char* name);
};

/// "short" and "int16", "int" and "int32" are the same type under two names; "long" is a type of
/// its own. The set of values has no name on purpose: such values are made in code only.
constexpr TypeRegistration typeRegistrations[] = {
    {"int", RegisterType<Int>},       {"long", RegisterType<Long>},
    {"short", RegisterType<Int16>},   {"string", RegisterType<std::string>},
    {"double", RegisterType<double>}, {"bool", RegisterType<bool>},
    {"uint8", RegisterType<UInt8>},   {"uint16", RegisterType<UInt16>},
    {"uint32", RegisterType<UInt32>}, {"uint64", RegisterType<UInt64>},
    {"int8", RegisterType<Int8>},     {"int16", RegisterType<Int16>},
    {"int32", RegisterType<Int>},     {"int64", RegisterType<Int64>},
};

void RegisterTypes() {
    for (const TypeRegistration& registration : typeRegistrations)
        registration.registerUnder(registration.name);
}

void RegisterServices() {
    Utilities::Singleton<Namespace>::Instance().Add("Services",
                                                    std::make_unique<ServiceDomain>().release());
}

/// The stream, the device and the formatter serve until the process ends and are never freed.
void SetUpLog() {
    SingletonWrapper<Utilities::LogPrinter> printer;
    printer.accessObject();
    auto* const stream = new Streams::debug_ostream<>;
    auto* const device =
        new Utilities::StreamLogDevice(stream, new SyncObjectsOSAL::CriticalSectionOSAL);
    printer->AddDevice("stream", device);
    printer->SetFormatter("stream", new Utilities::BriefLogFormatter);
    printer->SetLevelMask("stream", Utilities::LogLevel::All);
}

} // namespace

void RegisterAtStartUp() {
    RegisterTypes();
    RegisterServices();
    Utilities::FormatProviders::Instance().AddStringProvider(ExpandVariables);
    SetUpLog();
}

} // namespace Core
