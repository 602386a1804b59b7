#include "Modules/xFramework/OSAL/DurableFile.h"

#include "tests/Support/Files.h"

#include <signal.h>
#include <sys/resource.h>

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <string>
#include <system_error>

namespace OSAL {
namespace {

using Opening = DurableFile::Opening;
using TestSupport::ReadBytes;

std::string ErrorOfAppending(DurableFile& file, std::string_view bytes) {
    try {
        file.Append(bytes);
    } catch (const std::system_error& error) {
        return error.what();
    }
    return "none";
}

TEST(DurableFileTest, TellsThatTheDiskIsFull) {
    DurableFile file("/dev/full", Opening::Existing);
    EXPECT_EQ(ErrorOfAppending(file, "x"), "cannot write /dev/full: No space left on device");
}

TEST(DurableFileTest, TellsThatItsFolderHasGone) {
    try {
        SyncDirectory("/no/such/folder");
        FAIL() << "nothing was thrown";
    } catch (const std::system_error& error) {
        EXPECT_STREQ(error.what(), "cannot open /no/such/folder: No such file or directory");
    }
}

/// A limit of the size of files, in the place of a disk that becomes full.
class LimitedFileSize {
public:
    explicit LimitedFileSize(rlim_t size) : m_previous(::signal(SIGXFSZ, SIG_IGN)) {
        ::getrlimit(RLIMIT_FSIZE, &m_limit);
        const rlimit limit{size, m_limit.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~LimitedFileSize() {
        ::setrlimit(RLIMIT_FSIZE, &m_limit);
        ::signal(SIGXFSZ, m_previous);
    }
    LimitedFileSize(const LimitedFileSize&) = delete;
    LimitedFileSize& operator=(const LimitedFileSize&) = delete;

private:
    rlimit m_limit{};
    void (*m_previous)(int);
};

TEST(DurableFileTest, HoldsNothingOfWhatCouldNotBeAppendedToItsEnd) {
    const TestSupport::TemporaryDirectory directory;
    const std::string path = directory.Path("file");
    DurableFile file(path, Opening::New);
    file.Append("0123456789");
    {
        const LimitedFileSize limited(16);
        EXPECT_EQ(ErrorOfAppending(file, "abcdefghij"),
                  "cannot write " + path + ": File too large");
    }
    EXPECT_EQ(ReadBytes(path), "0123456789");
    file.Append("x");
    EXPECT_EQ(ReadBytes(path), "0123456789x");
}

TEST(DurableFileTest, IsNotOpenInAChild) {
    const TestSupport::TemporaryDirectory directory;
    const DurableFile file(directory.Path("the durable file"), Opening::New);
    FILE* const pipe = ::popen("ls -l /proc/self/fd", "r");
    std::array<char, 4096> buffer{};
    const std::string list(buffer.data(), std::fread(buffer.data(), 1, buffer.size(), pipe));
    ::pclose(pipe);
    EXPECT_NE(list.find("pipe:"), std::string::npos);
    EXPECT_EQ(list.find("the durable file"), std::string::npos);
}

} // namespace
} // namespace OSAL
