#include "tests/Modules/xFramework/OSAL/ChildProcessFixture.h"

#include <filesystem>
#include <system_error>
#include <thread>

namespace OSAL {
namespace {

class CommonChildProcessTest : public ChildProcessFixture {};

TEST_F(CommonChildProcessTest, GetsItsArgumentsUnchanged) {
    const std::vector<std::string> arguments{"plain",
                                             "",
                                             "two words",
                                             "\t",
                                             "\"",
                                             "\"quoted\"",
                                             "a\"b c\"d",
                                             "back\\slash",
                                             "back\\\\slashes and blanks",
                                             "C:\\folder\\",
                                             "C:\\a folder\\",
                                             "a folder\\\\",
                                             "\\\"",
                                             "\\\\\" \\\\",
                                             "*",
                                             "?.cpp",
                                             "%PATH%",
                                             "$HOME",
                                             "^&|<>()",
                                             "'single'",
                                             "line\nbreak",
                                             "Ω 測試 ü"};
    std::vector<std::string> all{"utf8"};
    std::string expected;
    for (const std::string& argument : arguments) {
        all.push_back(argument);
        expected += "[" + argument + "]";
    }
    ChildProcess child(Start(all));
    EXPECT_EQ(child.Wait(), (ChildEnd{0, false}));
    EXPECT_EQ(Output(), expected);
}

TEST_F(CommonChildProcessTest, HasNoInputAndAppendsBothOutputs) {
    directory.Create("output", "before\n");
    const std::string name = std::filesystem::path(directory.Path()).filename().string();
    ChildProcess child(Start({"streams"}));
    EXPECT_EQ(child.Wait(), (ChildEnd{7, false}));
    EXPECT_EQ(Output(), "before\nno input\nan error\n" + name + "\n");
}

TEST_F(CommonChildProcessTest, TellsItsEndAgain) {
    ChildProcess child(Start({"exit", "200"}));
    EXPECT_EQ(child.Wait(), (ChildEnd{200, false}));
    child.Kill();
    EXPECT_EQ(child.Wait(), (ChildEnd{200, false}));
}

TEST_F(CommonChildProcessTest, IsKilledWhileAnotherThreadWaits) {
    ChildProcess child(Start({"hold", peer.Port()}));
    AwaitHolding();
    ChildEnd end;
    std::thread waiter([&] { end = child.Wait(); });
    child.Kill();
    waiter.join();
    EXPECT_NE(end, ChildEnd{});
    EXPECT_EQ(peer.ReceiveAll(), "");
}

TEST_F(CommonChildProcessTest, GoesWithItsObject) {
    {
        const ChildProcess child(Start({"hold", peer.Port()}));
        AwaitHolding();
    }
    EXPECT_EQ(peer.ReceiveAll(), "");
}

TEST_F(CommonChildProcessTest, GoesWithItsParent) {
    LoopbackPeer parentsPeer;
    ChildProcess parent(Start({"starter", peer.Port(), parentsPeer.Port()}));
    AwaitHolding();
    parentsPeer.Accept();
    parentsPeer.Receive(1);
    parentsPeer.Send("!");
    EXPECT_EQ(parent.Wait(), (ChildEnd{3, false}));
    EXPECT_EQ(peer.ReceiveAll(), "");
}

TEST_F(CommonChildProcessTest, RunsFromAPathInUtf8) {
    ChildStart start = Start({"streams"});
    const std::filesystem::path folder =
        std::filesystem::path(directory.Path()) / std::filesystem::path(u8"Ω 測試");
    std::filesystem::create_directory(folder);
    const std::filesystem::path copy = folder / std::filesystem::path(start.program).filename();
    std::filesystem::copy_file(start.program, copy);
    const auto toText = [](const std::filesystem::path& path) {
        const std::u8string text = path.u8string();
        return std::string(text.begin(), text.end());
    };
    start.program = toText(copy);
    start.workingDirectory = toText(folder);
    start.outputFile = toText(folder / std::filesystem::path(u8"Ω.log"));
    EXPECT_EQ(ChildProcess(start).Wait(), (ChildEnd{7, false}));
    EXPECT_TRUE(std::filesystem::exists(folder / std::filesystem::path(u8"Ω.log")));
}

/// The words of an exception's text, or nothing when none was thrown.
std::string FailureOf(const ChildStart& start) {
    try {
        const ChildProcess child(start);
    } catch (const std::system_error& error) {
        EXPECT_NE(error.code().value(), 0);
        return error.what();
    }
    return "";
}

TEST_F(CommonChildProcessTest, ThatCannotBeStartedIsAnErrorNamedAfterWhatIsMissing) {
    ChildStart noProgram = Start({});
    noProgram.program = directory.Path("no-such-program");
    EXPECT_EQ(FailureOf(noProgram).find(noProgram.program + ": "), 0u) << FailureOf(noProgram);
    ChildStart noDirectory = Start({});
    noDirectory.workingDirectory = directory.Path("missing");
    EXPECT_EQ(FailureOf(noDirectory).find(noDirectory.workingDirectory + ": "), 0u)
        << FailureOf(noDirectory);
    ChildStart noOutput = Start({});
    noOutput.outputFile = directory.Path("missing") + "/output";
    EXPECT_EQ(FailureOf(noOutput).find(noOutput.outputFile + ": "), 0u) << FailureOf(noOutput);
    ChildStart noExecutable = Start({});
    noExecutable.program = directory.Create("text", "text");
    EXPECT_EQ(FailureOf(noExecutable).find(noExecutable.program + ": "), 0u);
}

} // namespace
} // namespace OSAL
