#pragma once

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <string>

namespace Bench {

/// A pipe with a name that takes nothing more, and that nobody reads.
class FullPipe {
public:
    explicit FullPipe(const std::string& name) {
        ::mkfifo(name.c_str(), S_IRUSR | S_IWUSR);
        m_end = ::open(name.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
        const std::array<char, 4096> bytes{};
        while (::write(m_end, bytes.data(), bytes.size()) > 0)
            continue;
    }
    ~FullPipe() { ::close(m_end); }
    FullPipe(const FullPipe&) = delete;
    FullPipe& operator=(const FullPipe&) = delete;

private:
    int m_end = -1;
};

} // namespace Bench
