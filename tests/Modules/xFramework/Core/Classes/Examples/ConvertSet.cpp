#include "Modules/xFramework/Core/Classes/ValueFactory.h"
#include "Modules/xFramework/Utilities/Singleton.h"
#include "tests/Modules/xFramework/Core/Classes/Examples/Examples.h"

std::string Examples::ConvertSet() {
    // example begins
    Core::Value texts;
    texts.GetMutableRef<std::set<Core::Value>>() = {Core::Value("36"), Core::Value("149")};

    auto& factory = Utilities::Singleton<Core::ValueFactory>::Instance();
    const Core::Value channels = factory.GetTypeDescriptor("int")->ConvertSet(texts);
    const int highest = *channels.GetRef<std::set<Core::Int>>().rbegin();
    // example ends
    return texts.ToString() + " | " + channels.ToString() + " | " + std::to_string(highest);
}
