#include "Tools/SarvexTool/Client/ArgumentCopies.h"

#include <gmock/gmock.h>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> Copy(const std::vector<const char*>& arguments) {
    return CopyArguments(static_cast<int>(arguments.size()), arguments.data());
}

TEST(ArgumentCopiesTest, LastArgumentLosesOneWhiteSpaceCharacter) {
    EXPECT_THAT(Copy({"client", "-exit "}), ElementsAre("client", "-exit"));
    EXPECT_THAT(Copy({"client", "-exit  "}), ElementsAre("client", "-exit "));
    for (const std::string space : {" ", "\t", "\n", "\v", "\f", "\r"}) {
        SCOPED_TRACE(testing::PrintToString(space));
        EXPECT_THAT(Copy({"client", ("x" + space).c_str()}), ElementsAre("client", "x"));
    }
    EXPECT_THAT(Copy({"client", "x\r\n"}), ElementsAre("client", "x\r"));
    EXPECT_THAT(Copy({"client", " "}), ElementsAre("client", ""));
}

TEST(ArgumentCopiesTest, OtherArgumentsAndOtherCharactersStay) {
    EXPECT_THAT(Copy({"client ", "-exit ", "x"}), ElementsAre("client ", "-exit ", "x"));
    EXPECT_THAT(Copy({"client", " -exit"}), ElementsAre("client", " -exit"));
    // No-break space and next line in common code pages.
    EXPECT_THAT(Copy({"client", "x\xA0"}), ElementsAre("client", "x\xA0"));
    EXPECT_THAT(Copy({"client", "x\x85"}), ElementsAre("client", "x\x85"));
    EXPECT_THAT(Copy({"client", ""}), ElementsAre("client", ""));
}

TEST(ArgumentCopiesTest, NoArgumentsGiveNoCopies) {
    EXPECT_THAT(Copy({}), IsEmpty());
}

} // namespace
