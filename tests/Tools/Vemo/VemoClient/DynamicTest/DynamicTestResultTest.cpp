#include "tests/Modules/xFramework/Utilities/LogRecorder.h"
#include "tests/Tools/Vemo/VemoClient/DynamicTest/DynamicTestFixture.h"

#include <string>
#include <utility>
#include <vector>

// What a run files in result.xml.

namespace {

using OSAL::Fake::TheWorld;

const std::string unsetAttributes = " ResourceUnit=\"-\" SpecificResourceUnit=\"-\" power=";

class DynamicTestResultTest : public DynamicTestFixture {
protected:
    /// result.xml of a run, every line of which reports the same powers.
    std::string ResultOf(const std::string& header, const std::vector<std::string>& lines,
                         const std::string& reply) {
        AnswerQueries();
        std::string content = header + "\n";
        for (const std::string& line : lines) {
            AnswerLine(reply);
            content += line + "\n";
        }
        EXPECT_EQ(Run(content), 0);
        return ReadFile("result.xml");
    }

    /// The element of a measurement that sets no column but Chains.
    static std::string Measurement(const std::string& chains, const std::string& power) {
        return "\t\t\t\t\t<chain" + chains + " BandwidthMode=\"-\" LargeRUSize=\"-\"" +
               unsetAttributes + "\"" + power + "\"/>\n";
    }

    /// A document with one path, whose innermost element holds the content.
    static std::string Document(const std::string& band, const std::string& bandwidth,
                                const std::string& channel, const std::string& rate,
                                const std::string& content) {
        return "<?xml version=\"1.0\" ?>\n"
               "<PowerTable MCC=\"US\" OTPVersion=\"-\">\n"
               "\t<Band value=\"" +
               band +
               "\">\n"
               "\t\t<Bandwidth value=\"" +
               bandwidth +
               "\">\n"
               "\t\t\t<Channel value=\"" +
               channel +
               "\">\n"
               "\t\t\t\t<Rate value=\"" +
               rate + "\">\n" + content +
               "\t\t\t\t</Rate>\n"
               "\t\t\t</Channel>\n"
               "\t\t</Bandwidth>\n"
               "\t</Band>\n"
               "</PowerTable>\n";
    }

    const std::string pathHeader = "Band,Bandwidth,Channel,Rate,Chains";
    const std::string powers = PowerA("17.5") + PowerB("18");
};

TEST_F(DynamicTestResultTest, LinesOfOneConfigurationShareOnePath) {
    EXPECT_EQ(ResultOf(pathHeader, {"5,80,36,R1,A", "5,80,36,R1,B"}, powers),
              Document("5", "80 MHz", "36", "R1",
                       Measurement("A", "17.5dBm") + Measurement("B", "18dBm")));
}

TEST_F(DynamicTestResultTest, ConfigurationTestedTwiceIsFiledTwice) {
    EXPECT_EQ(ResultOf(pathHeader, {"5,80,36,R1,A", "5,80,36,R1,A"}, powers),
              Document("5", "80 MHz", "36", "R1",
                       Measurement("A", "17.5dBm") + Measurement("A", "17.5dBm")));
}

TEST_F(DynamicTestResultTest, ChainsCellChoosesThePower) {
    const std::pair<const char*, const char*> cases[] = {
        {"A", "17.5dBm"}, {"B", "18dBm"}, {"AB", "17.5dBm"}, {"A+B", "dBm"},
        {"BA", "dBm"},    {"a", "dBm"},   {"-", "dBm"},
    };
    for (const auto& [chains, power] : cases) {
        SCOPED_TRACE(chains);
        EXPECT_EQ(ResultOf(pathHeader, {std::string("5,80,36,R1,") + chains}, powers),
                  Document("5", "80 MHz", "36", "R1", Measurement(chains, power)));
    }
}

TEST_F(DynamicTestResultTest, PowerThatWasNotFoundIsFiledAsNa) {
    EXPECT_EQ(ResultOf(pathHeader, {"5,80,36,R1,A", "5,80,36,R1,AB", "5,80,36,R1,B"}, PowerB("18")),
              Document("5", "80 MHz", "36", "R1",
                       Measurement("A", "NAdBm") + Measurement("AB", "NAdBm") +
                           Measurement("B", "18dBm")));
}

TEST_F(DynamicTestResultTest, UnsetCellsAreFiledAsTheMarker) {
    EXPECT_EQ(ResultOf(pathHeader, {"-,-,-,-,-"}, powers),
              Document("-", "- MHz", "-", "-", Measurement("-", "dBm")));
    EXPECT_EQ(ResultOf("Mode", {"SISO", "MIMO"}, powers),
              Document("-", "- MHz", "-", "-", Measurement("-", "dBm") + Measurement("-", "dBm")))
        << "columns that the header lacks";
    EXPECT_EQ(ResultOf("Unknown", {"5"}, powers),
              Document("-", "- MHz", "-", "-", Measurement("-", "dBm")))
        << "an invalid header";
}

TEST_F(DynamicTestResultTest, FurtherColumnsAreAttributesAndTheModeIsFiledNowhere) {
    EXPECT_EQ(ResultOf("Chains,Mode,Bandwidth Mode,Resource Unit,Specific Resource unit,Large RU "
                       "Size",
                       {"A,SISO,HE,242,3,484"}, powers),
              Document("-", "- MHz", "-", "-",
                       "\t\t\t\t\t<chainA BandwidthMode=\"HE\" LargeRUSize=\"484\" "
                       "ResourceUnit=\"242\" SpecificResourceUnit=\"3\" power=\"17.5dBm\"/>\n"));
}

TEST_F(DynamicTestResultTest, MeasurementsAreSortedByTheirElementNames) {
    EXPECT_EQ(ResultOf("Chains", {"B", "AB", "A", "B"}, powers),
              Document("-", "- MHz", "-", "-",
                       Measurement("A", "17.5dBm") + Measurement("AB", "17.5dBm") +
                           Measurement("B", "18dBm") + Measurement("B", "18dBm")));
}

TEST_F(DynamicTestResultTest, ElementsOfAPathKeepTheOrderOfTheLines) {
    EXPECT_EQ(ResultOf("Band", {"6", "5", "6"}, ""), "<?xml version=\"1.0\" ?>\n"
                                                     "<PowerTable MCC=\"US\" OTPVersion=\"-\">\n"
                                                     "\t<Band value=\"6\">\n"
                                                     "\t\t<Bandwidth value=\"- MHz\">\n"
                                                     "\t\t\t<Channel value=\"-\">\n"
                                                     "\t\t\t\t<Rate value=\"-\">\n" +
                                                         Measurement("-", "dBm") +
                                                         Measurement("-", "dBm") +
                                                         "\t\t\t\t</Rate>\n"
                                                         "\t\t\t</Channel>\n"
                                                         "\t\t</Bandwidth>\n"
                                                         "\t</Band>\n"
                                                         "\t<Band value=\"5\">\n"
                                                         "\t\t<Bandwidth value=\"- MHz\">\n"
                                                         "\t\t\t<Channel value=\"-\">\n"
                                                         "\t\t\t\t<Rate value=\"-\">\n" +
                                                         Measurement("-", "dBm") +
                                                         "\t\t\t\t</Rate>\n"
                                                         "\t\t\t</Channel>\n"
                                                         "\t\t</Bandwidth>\n"
                                                         "\t</Band>\n"
                                                         "</PowerTable>\n");
}

TEST_F(DynamicTestResultTest, UnitIsAppendedToWhateverTheBandwidthIs) {
    EXPECT_EQ(ResultOf("Bandwidth", {"80 MHz"}, ""),
              Document("-", "80 MHz MHz", "-", "-", Measurement("-", "dBm")));
}

TEST_F(DynamicTestResultTest, ShortLineLendsItsPowersToTheColumnsThatItLacks) {
    EXPECT_EQ(ResultOf("Band,Chains,Channel", {"5,A"}, powers),
              Document("5", "- MHz", "17.5", "-", Measurement("A", "17.5dBm")));
    EXPECT_EQ(ResultOf("Band,Chains,Channel,Rate", {"5,B"}, powers),
              Document("5", "- MHz", "17.5", "18", Measurement("B", "18dBm")));
    EXPECT_EQ(ResultOf("Chains,Band,Channel", {""}, powers),
              Document("18", "- MHz", "-", "-", Measurement("17.5", "dBm")))
        << "an empty line";
}

TEST_F(DynamicTestResultTest, CellsAreNotEscaped) {
    EXPECT_EQ(ResultOf("Band,Chains", {"<\"&'>,A/><x"}, powers),
              Document("<\"&'>", "- MHz", "-", "-",
                       "\t\t\t\t\t<chainA/><x BandwidthMode=\"-\" LargeRUSize=\"-\"" +
                           unsetAttributes + "\"dBm\"/>\n"));
}

class DynamicTestResultNodeTest : public DynamicTestFixture {
protected:
    DynamicTest test{"test.csv"};
    XML::Node parent;
};

TEST_F(DynamicTestResultNodeTest, ChildWithTheNameAndTheValueIsFound) {
    XML::Node* five = test.GetXmlNode(&parent, "Band", "value", "5");
    XML::Node* six = test.GetXmlNode(&parent, "Band", "value", "6");
    EXPECT_NE(five, six);
    EXPECT_STREQ(six->GetAttribute("value"), "6");
    EXPECT_EQ(test.GetXmlNode(&parent, "Band", "value", "5"), five);
    EXPECT_NE(test.GetXmlNode(&parent, "band", "value", "5"), five);
    EXPECT_NE(test.GetXmlNode(&parent, "Band", "Value", "5"), five);
    EXPECT_NE(test.GetXmlNode(&parent, "Band", "value", "5 "), five);
}

TEST_F(DynamicTestResultNodeTest, FirstOfSeveralMatchesIsTaken) {
    XML::Node* first = parent.AddChild("Band");
    parent.AddChild("Band")->SetAttribute("value", "5");
    first->SetAttribute("value", "5");
    EXPECT_EQ(test.GetXmlNode(&parent, "Band", "value", "5"), first);
}

TEST_F(DynamicTestResultNodeTest, EmptyValueMatchesNothing) {
    XML::Node* empty = test.GetXmlNode(&parent, "Band", "value", "");
    EXPECT_FALSE(empty->HasAttribute("value"));
    EXPECT_NE(test.GetXmlNode(&parent, "Band", "value", ""), empty);
}

TEST_F(DynamicTestResultNodeTest, AttributeThatIsMissingReadsAsEmpty) {
    parent.SetAttribute("value", "5");
    EXPECT_EQ(test.GetXmlNodeAttribute(parent, "value"), "5");
    EXPECT_EQ(test.GetXmlNodeAttribute(parent, "other"), "");
}

TEST_F(DynamicTestResultNodeTest, EveryChildOnTheWayIsTraced) {
    test.GetXmlNode(&parent, "Band", "value", "5");
    test.GetXmlNode(&parent, "Band", "value", "6");
    const Utilities::LogRecorder log(Utilities::LogLevel::Info);
    test.GetXmlNode(&parent, "Band", "value", "6");
    const std::string file = "4|src/Tools/Vemo/VemoClient/DynamicTest/DynamicTest|DynamicTest::";
    const std::string enter = "|--------------------->Enter";
    const std::string exit = "|<---------------------Exit";
    EXPECT_THAT(log.records,
                testing::ElementsAre(
                    file + "GetXmlNode" + enter, file + "GetXmlNodeAttribute" + enter,
                    file + "GetXmlNodeAttribute" + exit, file + "GetXmlNodeAttribute" + enter,
                    file + "GetXmlNodeAttribute" + exit, file + "GetXmlNode" + exit));
}

} // namespace
