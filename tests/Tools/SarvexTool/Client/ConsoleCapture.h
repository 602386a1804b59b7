#pragma once

#include <iostream>
#include <sstream>

/// Keeps what is written on standard output and standard error while it lives.
class ConsoleCapture {
public:
    ConsoleCapture()
        : m_oldOut(std::cout.rdbuf(m_out.rdbuf())), m_oldErr(std::cerr.rdbuf(m_err.rdbuf())) {}
    ~ConsoleCapture() {
        std::cout.rdbuf(m_oldOut);
        std::cerr.rdbuf(m_oldErr);
    }
    ConsoleCapture(const ConsoleCapture&) = delete;
    ConsoleCapture& operator=(const ConsoleCapture&) = delete;

    std::string Out() const { return m_out.str(); }
    std::string Err() const { return m_err.str(); }

private:
    std::ostringstream m_out;
    std::ostringstream m_err;
    std::streambuf* m_oldOut;
    std::streambuf* m_oldErr;
};
