#pragma once

// Public, stable within a major version. For any thread. Who catches an Utilities::Exception* owns
// it: delete it, or call TakeCaughtException in the catch block. A handler for
// const std::exception& does not catch the pointer.

#include <atomic>
#include <cstdint>
#include <exception>
#include <string>

namespace Utilities {

/// The place in the sources where an exception was raised.
class ErrorLocation {
public:
    /// Copies both texts: the source file's path from src/ (included), without extension, and the
    /// qualified name of the function.
    ErrorLocation(const char* file, std::uint32_t line, const char* function)
        : m_line(line), m_file(file), m_function(function) {}
    virtual ~ErrorLocation() = default;

    ErrorLocation(const ErrorLocation&) = delete;
    ErrorLocation& operator=(const ErrorLocation&) = delete;

    virtual std::uint32_t GetLine() const { return m_line; }
    virtual const std::string& GetFile() const { return m_file; }
    virtual const std::string& GetFunction() const { return m_function; }

private:
    std::uint32_t m_line;
    std::string m_file;
    std::string m_function;
};

/// The one exception class of the system: a finished message and, optionally, the place where it
/// was raised. It is thrown as a pointer to a heap object (see Raise), so that handlers catch
/// Utilities::Exception* or std::exception*; a handler that goes on running deletes the object.
class Exception : public std::exception {
public:
    /// Copies the message; there is no location yet.
    explicit Exception(const std::string& message) : m_message(message) { ++s_liveCount; }

    /// Shallow on purpose: the copy points at the location that the source still owns. Exceptions
    /// are thrown as pointers, so that a source and its copy are never both destroyed.
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

/// Where in the sources an error is raised, where the figures are fixed: logs and handlers of other
/// versions know them, so they stay when the source around them changes.
struct ErrorSite {
    /// Path of the source file from src/ (included), without extension.
    const char* file;
    std::uint32_t line;
    /// Qualified name of the function.
    const char* function;
};

/// Logs the message at the error level, then throws it as a new Utilities::Exception* that carries
/// the site as its location. What a channel of the log throws is thrown in its place.
[[noreturn]] void Raise(const std::string& message, const ErrorSite& site);

/// The same with the place of the call itself as the location: the way for every error whose
/// figures are not fixed. function is the qualified name; file and line are left to the compiler.
/// The location names the file without its extension, and from its last folder src on; where there
/// is no such folder, by the whole path that the compiler was given.
[[noreturn]] void Raise(const std::string& message, const char* function,
                        const char* file = __builtin_FILE(), std::uint32_t line = __builtin_LINE());

/// Raises "Assertion (…) failed at …" when the condition is false; conditionText is its source
/// text. Always active. The two forms differ as those of Raise do.
void Assert(bool condition, const char* conditionText, const ErrorSite& site);
void Assert(bool condition, const char* conditionText, const char* function,
            const char* file = __builtin_FILE(), std::uint32_t line = __builtin_LINE());

/// What a catch point needs to know of the exception that it caught, whether that was thrown as a
/// value or as a pointer.
struct CaughtException {
    enum class Kind {
        /// An Utilities::Exception (or another standard exception that was thrown as a pointer).
        Framework,
        /// A std::ios_base::failure.
        StreamFailure,
        /// Any other standard exception.
        Standard,
        /// Not a standard exception; text is empty.
        Unknown
    };

    Kind kind;
    /// The exception's own message.
    std::string text;
};

/// Takes the exception that is being handled: to be called in a catch block only. One that was
/// thrown as a pointer is deleted.
CaughtException TakeCaughtException();

} // namespace Utilities
