#include "Tools/Vemo/VemoSimulator/PortFile.h"

#include "tests/Modules/xFramework/OSAL/Fake/World.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <stdexcept>
#include <string>

namespace VemoSimulator {

namespace {

class PortFileTest : public testing::Test {
protected:
    PortFileTest() {
        OSAL::Fake::Reset();
        OSAL::Fake::TheWorld().modulePath = "/bench/vemo";
    }

    void Write(const std::string& content) { OSAL::Fake::TheWorld().files[m_path] = {content}; }

    static std::string Problem() {
        try {
            ReadPortFile();
        } catch (const std::runtime_error& error) {
            return error.what();
        }
        return "none";
    }

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

TEST_F(PortFileTest, TheFileIsNamedWithTheReason) {
    Write("80\r\n");
    EXPECT_EQ(Problem(),
              "the first four bytes of " + m_path + " hold no port; give a port with --port");
    OSAL::Fake::TheWorld().files.clear();
    OSAL::Fake::TheWorld().lastError = 2;
    EXPECT_EQ(Problem(), m_path + " is missing; give a port with --port");
    OSAL::Fake::TheWorld().lastError = 13;
    EXPECT_EQ(Problem(),
              m_path + " cannot be opened (the system's error 13); give a port with --port");
    OSAL::Fake::TheWorld().lastError = 2;
    OSAL::Fake::TheWorld().files[m_path] = {
        .content = "", .kind = {.isSymbolicLink = true}, .canBeOpened = false};
    EXPECT_EQ(Problem(), m_path + " is a link that leads to no file; give a port with --port");
}

TEST_F(PortFileTest, AFileInTheWorkingDirectoryIsNamedWhole) {
    OSAL::Fake::TheWorld().modulePathReadable = false;
    OSAL::Fake::TheWorld().lastError = 2;
    EXPECT_EQ(Problem(), std::filesystem::absolute("Socket.cfg").string() +
                             " is missing; give a port with --port");
}

} // namespace VemoSimulator
