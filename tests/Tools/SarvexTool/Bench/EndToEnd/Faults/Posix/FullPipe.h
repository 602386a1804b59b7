#pragma once

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <string>

namespace Bench {

/// A pipe with a name that takes nothing more, and that nobody reads before ReadOut.
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

    /// What is in it now, but for what has filled it.
    std::string ReadOut() {
        std::string text;
        std::array<char, 4096> piece{};
        for (ssize_t size = 0; (size = ::read(m_end, piece.data(), piece.size())) > 0;)
            text.append(piece.data(), static_cast<std::size_t>(size));
        std::erase(text, '\0');
        return text;
    }

private:
    int m_end = -1;
};

} // namespace Bench
