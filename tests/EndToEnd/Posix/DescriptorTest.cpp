#include "tests/EndToEnd/Support/Bench.h"
#include "tests/EndToEnd/Support/ScriptedPeer.h"
#include "tests/EndToEnd/Support/SocketTable.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <future>

// What the client has open while a daemon keeps it waiting.

namespace EndToEnd {
namespace {

using Names = std::vector<std::string>;

/// The open descriptors of a process, sorted: a file by its name, a TCP connection as "connection".
Names OpenDescriptors(std::uint64_t process) {
    const std::string connections = TestSupport::ReadBytes(socketTablePath);
    Names names;
    for (const auto& entry :
         std::filesystem::directory_iterator("/proc/" + std::to_string(process) + "/fd")) {
        const std::filesystem::path target = std::filesystem::read_symlink(entry);
        const std::string text = target.string();
        if (!text.starts_with("socket:["))
            names.push_back(target.filename());
        else if (connections.find(" " + text.substr(8, text.size() - 9) + " ") != std::string::npos)
            names.push_back("connection");
    }
    std::sort(names.begin(), names.end());
    return names;
}

/// The standard streams, so many connections and these files.
Names Expected(std::size_t connections, const Names& files) {
    Names names = {"err", "null", "out"};
    names.insert(names.end(), connections, "connection");
    names.insert(names.end(), files.begin(), files.end());
    std::sort(names.begin(), names.end());
    return names;
}

class DescriptorTest : public testing::Test {
protected:
    /// What the client has open inside each of its exchanges.
    std::vector<Names> DescriptorsOf(const Names& arguments) {
        std::vector<Names> descriptors;
        std::promise<std::uint64_t> started;
        std::future<std::uint64_t> process = started.get_future();
        std::uint64_t id = 0;
        {
            ScriptedPeer peer([&](Connection& connection, int number) {
                connection.ReadRequest();
                if (number == 0)
                    id = process.get();
                descriptors.push_back(OpenDescriptors(id));
                connection.Send("okDone");
            });
            bench.SetPort(peer.Port());
            bench.Write("SarvexToolCmds.txt", "-exit 0\n");
            bench.Write("test.csv", "Band\n5\n6\n");
            bench.AddProgram("SarvexToolClientWithoutPauses", "client");
            Process client(bench.Path("client"), arguments, bench.Directory());
            started.set_value(client.Id());
            EXPECT_EQ(client.Wait().exitCode, 0);
        }
        return descriptors;
    }

    Bench bench;
};

TEST_F(DescriptorTest, ExchangeHasItsConnectionOpenAndNothingElse) {
    EXPECT_THAT(DescriptorsOf({"-x"}), testing::ElementsAre(Expected(1, {})));
}

TEST_F(DescriptorTest, RunHasItsFilesAndOneConnectionAnExchangeOpen) {
    const Names files = {"test.csv", "result.csv", "result.xml"};
    EXPECT_THAT(DescriptorsOf({"-wifi-test-by-file", "test.csv"}),
                testing::ElementsAre(Expected(1, {}), Expected(2, files), Expected(3, files),
                                     Expected(4, files), Expected(5, files), Expected(6, files),
                                     Expected(7, files)));
}

} // namespace
} // namespace EndToEnd
