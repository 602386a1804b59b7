#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace Bench {

/// What --store names: a file, or a database on a PostgreSQL server.
class StoreName {
public:
    /// The value of a variable of the environment in UTF-8; nothing for one that is not set.
    using Environment = std::function<std::optional<std::string>(const std::string& name)>;

    /// A file's name in UTF-8, or
    /// postgresql://[USER[:PASSWORD]@][HOST[:PORT]][/DATABASE][?SETTING=VALUE...]. Throws
    /// std::invalid_argument; as a password may be anywhere in a URL that is not understood, the
    /// text has no part of it. A name with an @ after a colon is only that of a file which is
    /// there.
    static StoreName Parse(const std::string& text);

    /// Which system's variables tell the user's folder for data.
    enum class Folders : std::uint8_t { OfLinux, OfWindows };
    static constexpr Folders OwnFolders =
        std::filesystem::path::preferred_separator == '\\' ? Folders::OfWindows : Folders::OfLinux;

    /// Where runs are kept when nothing else is said: SARVEXTOOL_STORE, or a file in the user's
    /// folder for data. Throws std::invalid_argument when the environment tells of neither.
    static StoreName Default(const Environment& environment, Folders folders = OwnFolders);

    bool IsServer() const { return m_isServer; }
    /// Whether it is the file in the user's folder for data, whose folders are made where they are
    /// not there.
    bool IsUsersOwn() const { return m_isUsersOwn; }
    /// The file's name; empty for a server.
    const std::string& File() const { return m_file; }
    /// The names and values that the server's client library takes, with the password.
    const std::map<std::string, std::string>& Connection() const { return m_connection; }
    bool HasPassword() const { return m_connection.contains("password"); }
    /// For messages and files: the name or the URL without its password.
    const std::string& Shown() const { return m_shown; }

private:
    StoreName() = default;

    void ParseServer(const std::string& text);
    void Take(std::string_view key, std::optional<std::string_view> value);
    /// Those after the question mark.
    void TakeSettings(std::string_view query);

    bool m_isServer = false;
    bool m_isUsersOwn = false;
    std::string m_file;
    std::map<std::string, std::string> m_connection;
    std::string m_shown;
};

} // namespace Bench
