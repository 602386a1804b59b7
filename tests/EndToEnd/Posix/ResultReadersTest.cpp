#include "tests/EndToEnd/Support/Bench.h"
#include "tests/EndToEnd/Support/Simulator.h"

#include <gtest/gtest.h>

namespace EndToEnd {
namespace {

TEST(ResultReadersTest, AnIndependentParserReadsTheResultOfEveryExample) {
    const std::string examples = std::string(SARVEX_SOURCE_DIR) + "/examples";
    int files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(examples)) {
        SCOPED_TRACE(entry.path().string());
        ++files;
        const Simulator simulator;
        const Bench bench;
        bench.AddProgram("SarvexToolClientWithoutPauses", "client");
        bench.SetPort(simulator.Port());
        const ProcessResult run =
            EndToEnd::Run(bench.Path(ExecutableName("client")),
                          {"-wifi-test-by-file", entry.path().string()}, bench.Directory());
        EXPECT_EQ(run.exitCode, 0) << run.err;
        const ProcessResult parser =
            EndToEnd::Run("/usr/bin/xmllint", {"--noout", "result.xml"}, bench.Directory());
        EXPECT_EQ(parser.exitCode, 0) << parser.err;
    }
    EXPECT_GE(files, 3);
}

} // namespace
} // namespace EndToEnd
