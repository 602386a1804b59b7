#include "Tools/SarvexTool/Bench/Files/ClientFolder.h"

#include "Tools/SarvexTool/Bench/Files/BadFile.h"
#include "Tools/SarvexTool/Bench/Files/FileNames.h"
#include "tests/Modules/xFramework/OSAL/Fake/World.h"
#include "tests/Support/Files.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

namespace Bench {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using TestSupport::ReadBytes;

class ClientFolderTest : public testing::Test {
protected:
    ClientFolderTest() {
        OSAL::Fake::Reset();
        fs::create_directory(directory.Path("programs"));
        directory.Create("programs/client.exe", "the client");
    }

    std::vector<std::string> Names() const {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(directory.Path("client")))
            names.push_back(entry.path().filename().string());
        std::ranges::sort(names);
        return names;
    }

    TestSupport::TemporaryDirectory directory;
    const std::string program = directory.Path("programs/client.exe");
    const std::string folder = directory.Path() + "/client";
};

TEST_F(ClientFolderTest, HoldsCopiesAndThePortAndIsRemovedAtTheEnd) {
    directory.Create("programs/SarvexToolCmds.txt", "-wifi-stop 0\n");
    directory.Create("programs/other.txt", "");
    {
        const ClientFolder client(folder, program, 4321);
        EXPECT_THAT(Names(), ElementsAre("SarvexToolCmds.txt", "Socket.cfg", "client.exe"));
        EXPECT_EQ(client.Path(), folder);
        EXPECT_EQ(client.Program(), folder + "/client.exe");
        EXPECT_EQ(client.Lines(), folder + "/lines.csv");
        EXPECT_EQ(client.Result(), folder + "/result.csv");
        EXPECT_EQ(ReadBytes(client.Program()), "the client");
        EXPECT_EQ(ReadBytes(folder + "/Socket.cfg"), "4321");
        EXPECT_EQ(ReadBytes(folder + "/SarvexToolCmds.txt"), "-wifi-stop 0\n");
        EXPECT_EQ(fs::hard_link_count(client.Program()), 1u);
        TestSupport::WriteBytes(client.Lines(), "Band\n");
    }
    EXPECT_FALSE(fs::exists(folder));
}

TEST_F(ClientFolderTest, TakesThePlaceOfOneThatWasLeft) {
    fs::create_directories(folder + "/inner");
    TestSupport::WriteBytes(folder + "/result.csv", "old");
    const ClientFolder client(folder, program, 4321);
    EXPECT_THAT(Names(), ElementsAre("Socket.cfg", "client.exe"));
}

TEST_F(ClientFolderTest, OfAReadOnlyClientIsRemovedToo) {
    fs::permissions(program, fs::perms::owner_read | fs::perms::owner_exec);
    { const ClientFolder client(folder, program, 4321); }
    EXPECT_FALSE(fs::exists(folder));
    fs::permissions(program, fs::perms::owner_all);
}

TEST_F(ClientFolderTest, OfAClientThatIsNoFileIsNotLeft) {
    for (const std::string& client : {directory.Path("none.exe"), directory.Path("programs")}) {
        SCOPED_TRACE(client);
        try {
            const ClientFolder made(folder, client, 4321);
            FAIL() << "nothing was thrown";
        } catch (const BadInput& bad) {
            EXPECT_EQ(bad.File(), client);
            EXPECT_EQ(bad.Problems().at(0).text.find("cannot be used as the client ("), 0u);
        }
        EXPECT_FALSE(fs::exists(folder));
    }
}

TEST_F(ClientFolderTest, ATableOfCommandsThatIsALinkIsRefusedAsTheClientDoes) {
    const std::string table = directory.Create("programs/SarvexToolCmds.txt", "-wifi-stop 0\n");
    OSAL::Fake::File& file = OSAL::Fake::TheWorld().files[NameOf(fs::canonical(table))];
    const auto problem = [&]() -> std::string {
        try {
            const ClientFolder client(folder, program, 4321);
        } catch (const BadInput& bad) {
            return bad.Problems().at(0).text;
        }
        return "none";
    };
    file.hardLinks = 2;
    EXPECT_EQ(problem(), "is a link, which the client does not read");
    file.hardLinks = 1;
    EXPECT_EQ(problem(), "none");
    file.kind.isSymbolicLink = true;
    EXPECT_EQ(problem(), "is a link, which the client does not read");
    EXPECT_FALSE(fs::exists(folder));
}

TEST_F(ClientFolderTest, MayHaveAnyName) {
    const std::string name = directory.Path() + "/Prüf lauf Ω";
    const ClientFolder client(name, program, 4321);
    EXPECT_TRUE(fs::exists(PathOf(client.Program())));
}

} // namespace
} // namespace Bench
