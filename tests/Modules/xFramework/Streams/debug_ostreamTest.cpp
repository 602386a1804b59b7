#include "Modules/xFramework/Streams/debug_ostream.h"

#include "tests/Modules/xFramework/OSAL/Fake/World.h"

#include <gmock/gmock.h>

#include <ostream>
#include <string>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class debug_ostreamTest : public testing::Test {
protected:
    debug_ostreamTest() { OSAL::Fake::Reset(); }

    const std::vector<std::string>& Messages() const { return OSAL::Fake::TheWorld().debugOutput; }

    Streams::debug_ostream<> stream;
};

TEST_F(debug_ostreamTest, SendsOneMessageForEachLineThatIsNotEmpty) {
    stream << "a\n\nb\n";
    EXPECT_THAT(Messages(), ElementsAre("a\n", "b\n"));
}

TEST_F(debug_ostreamTest, SendsAnUnfinishedLineOnFlush) {
    stream << "half a line";
    EXPECT_THAT(Messages(), IsEmpty());
    stream.flush();
    EXPECT_THAT(Messages(), ElementsAre("half a line\n"));
}

TEST_F(debug_ostreamTest, SendsALineOnceThoughItsEndAlsoFlushes) {
    stream << "attempt " << 3 << std::endl;
    EXPECT_THAT(Messages(), ElementsAre("attempt 3\n"));
    EXPECT_TRUE(stream.good());
}

TEST_F(debug_ostreamTest, PutsPrefixAndColonBeforeEachLine) {
    Streams::debug_ostream prefixed(std::string("P"));
    prefixed << "x\ny\n";
    EXPECT_THAT(Messages(), ElementsAre("P:x\n", "P:y\n"));
}

TEST_F(debug_ostreamTest, TakesANewPrefixFromTheNextLineOn) {
    stream << "a\n";
    stream.GetBuffer().SetPrefix("P");
    stream << "b\n";
    stream.GetBuffer().SetPrefix("");
    stream << "c\n";
    EXPECT_THAT(Messages(), ElementsAre("a\n", "P:b\n", "c\n"));
}

TEST_F(debug_ostreamTest, SendsNoPrefixForAnEmptyLine) {
    Streams::debug_ostream prefixed(std::string("P"));
    prefixed << "\n" << std::flush;
    EXPECT_THAT(Messages(), IsEmpty());
}

} // namespace
