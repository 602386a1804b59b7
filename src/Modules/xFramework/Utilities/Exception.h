#pragma once

#include "Modules/xFramework/Utilities/ErrorLocation.h"

#include <atomic>
#include <cstdint>
#include <exception>
#include <string>

namespace Utilities {

/// The one exception class of the system: a finished message and, optionally, the place where it
/// was raised. It is thrown as a pointer to a heap object (see Raise.h), so that handlers catch
/// Utilities::Exception* or std::exception*; a handler that goes on running deletes the object.
class Exception : public std::exception {
public:
    /// Copies the message; there is no location yet.
    explicit Exception(const std::string& message) : m_message(message) { ++s_liveCount; }

    /// Shallow on purpose: the copy points at the location that the source still owns. Exceptions
    /// travel by pointer and are not copied on any road that destroys both.
    Exception(const Exception& other)
        : std::exception(other), m_message(other.m_message), m_pLocation(other.m_pLocation) {
        ++s_liveCount;
    }
    Exception& operator=(const Exception&) = delete;

    ~Exception() override {
        delete m_pLocation;
        --s_liveCount;
    }

    const char* what() const noexcept override { return m_message.c_str(); }

    /// Takes ownership of the location and deletes the one held so far.
    virtual void SetLocation(ErrorLocation* pLocation) {
        delete m_pLocation;
        m_pLocation = pLocation;
    }

    /// The location, null when none was set; the exception owns it.
    const ErrorLocation* GetLocation() const { return m_pLocation; }

    /// How many exceptions there are in the process: 0 outside the handling of one, unless a
    /// handler forgot to delete its own.
    static std::int64_t GetLiveCount() { return s_liveCount; }

private:
    inline static std::atomic<std::int64_t> s_liveCount = 0;

    std::string m_message;
    ErrorLocation* m_pLocation = nullptr;
};

} // namespace Utilities
