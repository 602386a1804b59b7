#include "tests/Modules/xFramework/OSAL/ChildProcessFixture.h"

#include <windows.h>

namespace OSAL {
namespace {

class ChildProcessTest : public ChildProcessFixture {};

TEST_F(ChildProcessTest, InheritsNoHandle) {
    SECURITY_ATTRIBUTES inherit{sizeof inherit, nullptr, TRUE};
    const std::string path = directory.Path("open");
    const HANDLE file = ::CreateFileA(path.c_str(), GENERIC_WRITE, 0, &inherit, CREATE_ALWAYS,
                                      FILE_ATTRIBUTE_NORMAL, nullptr);
    ASSERT_NE(file, INVALID_HANDLE_VALUE);
    const ChildProcess child(Start({"hold", peer.Port()}));
    AwaitHolding();
    ::CloseHandle(file);
    // Nobody removes a file that is open elsewhere.
    EXPECT_TRUE(::DeleteFileA(path.c_str()));
}

TEST_F(ChildProcessTest, KeepsAllBitsOfItsExitCode) {
    for (const int code : {-1, 256, 70000}) {
        SCOPED_TRACE(code);
        EXPECT_EQ(ChildProcess(Start({"exit", std::to_string(code)})).Wait(),
                  (ChildEnd{code, false}));
    }
}

TEST_F(ChildProcessTest, AnErrorIsToldInTheSystemsWords) {
    ChildStart start = Start({});
    start.program = directory.Path("no-such-program");
    try {
        const ChildProcess child(start);
        FAIL();
    } catch (const std::system_error& error) {
        EXPECT_EQ(error.code().value(), ERROR_FILE_NOT_FOUND);
        const std::string text = error.what();
        EXPECT_NE(text.find("ile not found"), std::string::npos) << text;
    }
}

} // namespace
} // namespace OSAL
