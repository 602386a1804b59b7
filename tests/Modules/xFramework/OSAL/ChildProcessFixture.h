#pragma once

#include "Modules/xFramework/OSAL/ChildProcess.h"
#include "Modules/xFramework/OSAL/Process.h"
#include "Modules/xFramework/Utilities/ProgramFiles.h"
#include "tests/Modules/xFramework/OSAL/LoopbackPeer.h"
#include "tests/Support/Files.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace OSAL {

class ChildProcessFixture : public testing::Test {
protected:
    /// How the tests' own program is started in the test's directory.
    ChildStart Start(const std::vector<std::string>& arguments) const {
        std::string program = Utilities::PathBesideProgram("OSALTestsChild");
        // The suffix ends in a blank on one system.
        program += std::string(ExecutableSuffix).substr(0, 4);
        return {program, arguments, directory.Path(), directory.Path("output")};
    }

    /// What the child printed, with the line ends of no system.
    std::string Output() const {
        std::string text = TestSupport::ReadBytes(directory.Path("output"));
        std::erase(text, '\r');
        return text;
    }

    /// Waits until a child that holds is connected to the peer and sleeps. Under wine the
    /// connection of a program that is ended in a call of the sockets stays open.
    void AwaitHolding() {
        constexpr std::uint32_t pauseMilliseconds = 2;
        peer.Accept();
        peer.Receive(1);
        while (TestSupport::ReadBytes(directory.Path("held.txt")).empty())
            Sleep(pauseMilliseconds);
    }

    TestSupport::TemporaryDirectory directory;
    LoopbackPeer peer;
};

} // namespace OSAL
