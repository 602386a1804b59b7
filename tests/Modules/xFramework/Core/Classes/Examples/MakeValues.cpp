#include "Modules/xFramework/Core/Classes/ValueFactory.h"
#include "Modules/xFramework/Utilities/Singleton.h"
#include "tests/Modules/xFramework/Core/Classes/Examples/Examples.h"

std::string Examples::MakeValues() {
    // example begins
    // By type name and text.
    auto& factory = Utilities::Singleton<Core::ValueFactory>::Instance();
    Core::Value channel;
    channel.Set(factory.Create("uint16", "0x24").release());

    // From a typed literal, and from a text that is none.
    const Core::Value power("{double:17.5}");
    const Core::Value option("-wifi-band");

    // The type stays as long as the text can be read: 36 becomes 40, still a uint16.
    channel = "40";
    const Core::UInt16 number = channel.GetRef<Core::UInt16>();

    // A copy shares the object until one of the two is changed.
    Core::Value next = channel;
    next.GetMutableRef<Core::UInt16>() += 4;
    // example ends
    return channel.ToString() + " " + next.ToString() + " " + std::to_string(number) + " " +
           power.ToString() + " " + option.ToString();
}
