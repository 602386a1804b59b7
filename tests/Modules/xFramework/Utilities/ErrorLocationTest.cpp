#include "Modules/xFramework/Utilities/ErrorLocation.h"

#include <gtest/gtest.h>

#include <string>

namespace Utilities {
namespace {

TEST(ErrorLocation, CopiesItsTexts) {
    std::string file = "src/Modules/xFramework/Core/Classes/Service";
    std::string function = "Core::Service::OnAttach";
    const ErrorLocation location(file.c_str(), 31, function.c_str());
    file.assign(file.size(), '#');
    function.assign(function.size(), '#');
    EXPECT_EQ(location.GetLine(), 31u);
    EXPECT_EQ(location.GetFile(), "src/Modules/xFramework/Core/Classes/Service");
    EXPECT_EQ(location.GetFunction(), "Core::Service::OnAttach");
}

TEST(ErrorLocation, HoldsTheLargestLine) {
    EXPECT_EQ(ErrorLocation("", 0xFFFFFFFF, "").GetLine(), 0xFFFFFFFFu);
}

} // namespace
} // namespace Utilities
