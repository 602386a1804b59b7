#include "Tools/Vemo/VemoSimulator/PortFile.h"

#include "tests/Modules/xFramework/OSAL/Fake/World.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace VemoSimulator {

namespace {

class PortFileTest : public testing::Test {
protected:
    PortFileTest() {
        OSAL::Fake::Reset();
        OSAL::Fake::TheWorld().modulePath = "/bench/vemo";
    }

    void Write(const std::string& content) { OSAL::Fake::TheWorld().files[m_path] = {content}; }

    const std::string m_path = "/bench/Socket.cfg";
};

} // namespace

TEST_F(PortFileTest, FourBytesUpToANulAreThePort) {
    const struct {
        std::string content;
        std::uint16_t port;
    } rows[] = {{"8738", 8738},       {"87381", 8738},     {"8738\r\n", 8738}, {"80", 80},
                {{"80\0xyz", 6}, 80}, {"9999 8738", 9999}, {"0001", 1}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.content);
        Write(row.content);
        EXPECT_EQ(ReadPortFile(), row.port);
    }
}

TEST_F(PortFileTest, AnythingElseIsNoPort) {
    for (const char* content : {"", "0", "0000", "80\r\n", " 873", "port", "-873"}) {
        SCOPED_TRACE(content);
        Write(content);
        EXPECT_THROW(ReadPortFile(), std::runtime_error);
    }
}

TEST_F(PortFileTest, AMissingFileIsNamed) {
    try {
        ReadPortFile();
        FAIL() << "no error";
    } catch (const std::runtime_error& error) {
        EXPECT_EQ(error.what(),
                  "the first four bytes of " + m_path + " hold no port; give one with --port");
    }
}

} // namespace VemoSimulator
