#include "Tools/Vemo/VemoClient/DynamicTest/PowerTable.h"

#include <gtest/gtest.h>

#include <sstream>

// What a run files is tested with the run (DynamicTestResultTest.cpp); here is the table by itself.

namespace PowerTest {

namespace {

std::string TextOf(const PowerTable& table) {
    std::ostringstream xml;
    EXPECT_TRUE(table.Write(xml));
    return xml.str();
}

TEST(PowerTableTest, TableWithoutRowsIsItsElementAlone) {
    EXPECT_EQ(TextOf(PowerTable({"Band"}, "-")), "<?xml version=\"1.0\" ?>\n"
                                                 "<PowerTable MCC=\"-\" OTPVersion=\"-\"/>\n");
}

TEST(PowerTableTest, RowsAreFiledByTheHeadersColumns) {
    PowerTable table({"Chains", "Band", "Channel"}, "US");
    table.File("A,5,36,17.5,18");
    table.File("B, 5 ,36,17.5,18\r");
    table.File("AB,5");
    EXPECT_EQ(TextOf(table),
              "<?xml version=\"1.0\" ?>\n"
              "<PowerTable MCC=\"US\" OTPVersion=\"-\">\n"
              "\t<Band value=\"5\">\n"
              "\t\t<Bandwidth value=\"- MHz\">\n"
              "\t\t\t<Channel value=\"36\">\n"
              "\t\t\t\t<Rate value=\"-\">\n"
              "\t\t\t\t\t<chainA BandwidthMode=\"-\" LargeRUSize=\"-\" ResourceUnit=\"-\" "
              "SpecificResourceUnit=\"-\" power=\"17.5dBm\"/>\n"
              "\t\t\t\t\t<chainB BandwidthMode=\"-\" LargeRUSize=\"-\" ResourceUnit=\"-\" "
              "SpecificResourceUnit=\"-\" power=\"18dBm\"/>\n"
              "\t\t\t\t</Rate>\n"
              "\t\t\t</Channel>\n"
              "\t\t\t<Channel value=\"-\">\n"
              "\t\t\t\t<Rate value=\"-\">\n"
              "\t\t\t\t\t<chainAB BandwidthMode=\"-\" LargeRUSize=\"-\" ResourceUnit=\"-\" "
              "SpecificResourceUnit=\"-\" power=\"ABdBm\"/>\n"
              "\t\t\t\t</Rate>\n"
              "\t\t\t</Channel>\n"
              "\t\t</Bandwidth>\n"
              "\t</Band>\n"
              "</PowerTable>\n");
}

TEST(PowerTableTest, StreamThatFailsIsTold) {
    std::ostringstream xml;
    xml.setstate(std::ios::badbit);
    EXPECT_FALSE(PowerTable({}, "US").Write(xml));
}

} // namespace

} // namespace PowerTest
