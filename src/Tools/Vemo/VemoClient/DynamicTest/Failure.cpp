#include "Tools/Vemo/VemoClient/DynamicTest/Failure.h"

#include "Modules/xFramework/Utilities/Format.h"

#include <iostream>

namespace PowerTest {

void PrintError(const std::string& messageTemplate, const std::string& text) {
    std::cerr << Utilities::FillTemplate(messageTemplate, {text});
}

} // namespace PowerTest
