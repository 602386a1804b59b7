#include <cstddef>
#include <cstdlib>
#include <string>

// Who the user is and where his home is, in place of the client library's own functions, which ask
// the system's list of users: that may be kept by services that a program with a C library of its
// own cannot load. The library looks for its own variables of the environment before it asks.

namespace {

bool TakeVariable(const char* name, char* buffer, std::size_t size) {
    const char* const value = std::getenv(name); // NOLINT(concurrency-mt-unsafe)
    const std::string text = value == nullptr ? "" : value;
    if (text.empty() || text.size() >= size)
        return false;
    text.copy(buffer, text.size());
    buffer[text.size()] = '\0';
    return true;
}

} // namespace

extern "C" {

bool pg_get_user_name(unsigned user, char* buffer, std::size_t size);
bool pg_get_user_home_dir(unsigned user, char* buffer, std::size_t size);

/// On failure the buffer holds the reason.
bool pg_get_user_name(unsigned /*user*/, char* buffer, std::size_t size) {
    if (TakeVariable("LOGNAME", buffer, size) || TakeVariable("USER", buffer, size))
        return true;
    const std::string reason = "the environment tells no user's name; put it into the URL";
    buffer[reason.copy(buffer, size - 1)] = '\0';
    return false;
}

/// The library has looked for HOME already.
bool pg_get_user_home_dir(unsigned /*user*/, char* buffer, std::size_t size) {
    buffer[size - 1] = '\0';
    return TakeVariable("HOME", buffer, size);
}
}
