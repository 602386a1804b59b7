#include "Modules/xFramework/Core/Classes/Namespace.h"
#include "Modules/xFramework/Core/Classes/Value.h"
#include "Modules/xFramework/Utilities/Format.h"
#include "tests/Modules/xFramework/Core/Classes/Examples/Examples.h"

std::string Examples::ExpandVariable() {
    // example begins
    Core::GlobalVariables().Add("chain", new Core::Value("A"));
    Core::GlobalVariables().Add("limitA", new Core::Value("{double:17.5}"));

    const Utilities::Format message("Chain $(chain): $(limit$(chain)) dBm, ${1} $(unknown)", "ok");
    // example ends
    Core::GlobalVariables().Remove("chain");
    Core::GlobalVariables().Remove("limitA");
    return message;
}
