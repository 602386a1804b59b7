#include "Tools/SarvexTool/Bench/Output/Junit.h"
#include "tests/Tools/SarvexTool/Bench/Output/OutputFixture.h"

#include <gmock/gmock.h>

#include <sstream>

namespace Bench {
namespace {

using testing::HasSubstr;

TEST(JunitTest, MeasurementsAreCasesInSuitesByBandAndBandwidth) {
    const OutputFixture fixture;
    std::ostringstream stream;
    WriteJunit(stream, fixture.Judged());
    EXPECT_EQ(stream.str(), R"xml(<?xml version="1.0" encoding="UTF-8"?>
<testsuites name="judge" tests="8" failures="5" errors="0">
  <testsuite name="Band 5, Bandwidth 80" tests="4" failures="1" errors="0" skipped="0">
    <testcase name="Chains AB, Channel 36, Rate MCS9, chain A" classname="Band 5, Bandwidth 80"/>
    <testcase name="Chains AB, Channel 36, Rate MCS9, chain B" classname="Band 5, Bandwidth 80">
      <failure type="too low" message="too low by 0.25 dB: 11.75 dBm, limits 12 to 14 dBm (line 2)"/>
    </testcase>
    <testcase name="Chains AB, Channel 36, Rate MCS9, chain A (2)" classname="Band 5, Bandwidth 80"/>
    <testcase name="Chains AB, Channel 36, Rate MCS9, chain B (2)" classname="Band 5, Bandwidth 80"/>
  </testsuite>
  <testsuite name="Band 2.4, Bandwidth 20" tests="1" failures="1" errors="0" skipped="0">
    <testcase name="Chains A, Channel 6, Rate MCS9, chain A" classname="Band 2_4, Bandwidth 20">
      <failure type="too high" message="too high by 0.5 dB: 15 dBm, limits at most 14.5 dBm (line 3)"/>
    </testcase>
  </testsuite>
  <testsuite name="Band 6, Bandwidth 20" tests="2" failures="2" errors="0" skipped="0">
    <testcase name="Chains A, Channel 500, Rate MCS9, chain A" classname="Band 6, Bandwidth 20">
      <failure type="not measured" message="not measured: no power was reported (line 4)"/>
    </testcase>
    <testcase name="Chains A, Channel 1, Rate MCS9, chain A" classname="Band 6, Bandwidth 20">
      <failure type="not measured" message="not measured: Band is uncertain since line 4 (line 5)"/>
    </testcase>
  </testsuite>
  <testsuite name="Band 7, Bandwidth 20" tests="1" failures="1" errors="0" skipped="0">
    <testcase name="Chains B, Channel 1, Rate MCS9, chain B" classname="Band 7, Bandwidth 20">
      <failure type="no limit" message="no limit fits: 1 dBm (line 6)"/>
    </testcase>
  </testsuite>
</testsuites>
)xml");
}

TEST(JunitTest, AFailureNamesTheBenchWhereItIsTold) {
    OutputFixture fixture;
    fixture.TellPlaces();
    std::ostringstream judged;
    WriteJunit(judged, fixture.Judged());
    EXPECT_THAT(judged.str(), HasSubstr("limits 12 to 14 dBm (line 2, bench =b\\x1B)\"/>"));
    EXPECT_THAT(judged.str(), HasSubstr("limits at most 14.5 dBm (line 3, bench a)\"/>"));
    EXPECT_THAT(judged.str(), HasSubstr("no power was reported (line 4)\"/>"));
    std::ostringstream compared;
    WriteJunit(compared, fixture.Compared());
    EXPECT_THAT(compared.str(), HasSubstr("to 15 dBm (old line 2, new line 3, bench a)\"/>"));
}

TEST(JunitTest, RunThatEndedEarlyIsOneMoreCaseThatFailed) {
    OutputFixture fixture;
    fixture.JudgeEarlyEnd();
    std::ostringstream stream;
    WriteJunit(stream, fixture.Judged());
    EXPECT_EQ(stream.str(), R"xml(<?xml version="1.0" encoding="UTF-8"?>
<testsuites name="judge" tests="2" failures="1" errors="0">
  <testsuite name="Band 5, Bandwidth unknown" tests="1" failures="0" errors="0" skipped="0">
    <testcase name="Chains A, Channel 36, chain A" classname="Band 5, Bandwidth unknown"/>
  </testsuite>
  <testsuite name="Run" tests="1" failures="1" errors="0" skipped="0">
    <testcase name="all lines were run" classname="Run">
      <failure type="ended early" message="the run is not complete: 1 of 5 lines were run"/>
    </testcase>
  </testsuite>
</testsuites>
)xml");
}

TEST(JunitTest, WordsOfTheDaemonAreTextOfXml) {
    OutputFixture fixture;
    fixture.JudgeRefusal("<\x01\">");
    std::ostringstream stream;
    WriteJunit(stream, fixture.Judged());
    EXPECT_NE(stream.str().find("message=\"not measured: the daemon refused the line: "
                                "&lt;\\x01&quot;&gt; (line 2)\""),
              std::string::npos)
        << stream.str();
}

TEST(JunitTest, CasesOfAComparisonAreThoseOfEitherRun) {
    const OutputFixture fixture;
    std::ostringstream stream;
    WriteJunit(stream, fixture.Compared());
    EXPECT_EQ(stream.str(), R"xml(<?xml version="1.0" encoding="UTF-8"?>
<testsuites name="compare" tests="8" failures="7" errors="0">
  <testsuite name="Band 2.4, Bandwidth 20" tests="1" failures="1" errors="0" skipped="0">
    <testcase name="Chains A, Channel 6, Rate MCS9, chain A" classname="Band 2_4, Bandwidth 20">
      <failure type="changed" message="changed by +0.75 dB: 14.25 dBm to 15 dBm (old line 2, new line 3)"/>
    </testcase>
  </testsuite>
  <testsuite name="Band 6, Bandwidth 20" tests="2" failures="2" errors="0" skipped="0">
    <testcase name="Chains A, Channel 500, Rate MCS9, chain A" classname="Band 6, Bandwidth 20">
      <failure type="measured in old only" message="measured in the old run only: 9 dBm, then not measured: no power was reported (old line 3, new line 4)"/>
    </testcase>
    <testcase name="Chains A, Channel 1, Rate MCS9, chain A" classname="Band 6, Bandwidth 20">
      <failure type="in new only" message="in the new run only: not measured: Band is uncertain since line 4 (new line 5)"/>
    </testcase>
  </testsuite>
  <testsuite name="Band 5, Bandwidth 80" tests="4" failures="3" errors="0" skipped="0">
    <testcase name="Chains AB, Channel 36, Rate MCS9, chain A" classname="Band 5, Bandwidth 80"/>
    <testcase name="Chains AB, Channel 36, Rate MCS9, chain B" classname="Band 5, Bandwidth 80">
      <failure type="changed" message="changed by -0.75 dB: 12.5 dBm to 11.75 dBm (old line 4, new line 2)"/>
    </testcase>
    <testcase name="Chains AB, Channel 36, Rate MCS9, chain A (2)" classname="Band 5, Bandwidth 80">
      <failure type="in new only" message="in the new run only: 13 dBm (new line 7)"/>
    </testcase>
    <testcase name="Chains AB, Channel 36, Rate MCS9, chain B (2)" classname="Band 5, Bandwidth 80">
      <failure type="in new only" message="in the new run only: 13 dBm (new line 7)"/>
    </testcase>
  </testsuite>
  <testsuite name="Band 7, Bandwidth 20" tests="1" failures="1" errors="0" skipped="0">
    <testcase name="Chains B, Channel 1, Rate MCS9, chain B" classname="Band 7, Bandwidth 20">
      <failure type="in new only" message="in the new run only: 1 dBm (new line 6)"/>
    </testcase>
  </testsuite>
</testsuites>
)xml");
}

TEST(JunitTest, WhatXmlCannotHoldIsMadeVisible) {
    EXPECT_EQ(XmlText("a<b>&\"c\"'"), "a&lt;b&gt;&amp;&quot;c&quot;'");
    EXPECT_EQ(XmlText(std::string("\0\x01\x1B\t\n\x7F", 6)), "\\x00\\x01\\x1B\\t\\n\\x7F");
    EXPECT_EQ(XmlText("\xFF\xC0\x80\xED\xA0\x80"), "\\xFF\\xC0\\x80\\xED\\xA0\\x80");
    EXPECT_EQ(XmlText("\xEF\xBF\xBE\xEF\xBF\xBF"), "\\u{FFFE}\\u{FFFF}");
    EXPECT_EQ(XmlText("\xC3\xA4\xF0\x9F\x93\xB6"), "\xC3\xA4\xF0\x9F\x93\xB6");
}

TEST(JunitTest, HostileCellsStayTexts) {
    OutputFixture fixture;
    fixture.JudgeChannel("]]><x a=\"&\">\x1B");
    std::ostringstream stream;
    WriteJunit(stream, fixture.Judged());
    EXPECT_NE(
        stream.str().find("name=\"Chains A, Channel ]]&gt;&lt;x a=&quot;&amp;&quot;&gt;\\x1B, "
                          "chain A\" classname=\"Band 5, Bandwidth unknown\""),
        std::string::npos)
        << stream.str();
}

} // namespace
} // namespace Bench
