#include "Tools/SarvexTool/Bench/History/StoreName.h"

#include "Tools/SarvexTool/Bench/Files/FileNames.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <filesystem>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace Bench {

namespace {

constexpr std::array<std::string_view, 2> schemes{"postgresql://", "postgres://"};

/// What may be said after the question mark. The rest would be of no effect or is said elsewhere.
constexpr std::array<std::string_view, 5> settings{"application_name", "connect_timeout", "host",
                                                   "options", "passfile"};

/// How a server's name is begun by mistake, in small letters. As a file's name it would be shown,
/// with the password that may be in it.
constexpr std::array<std::string_view, 4> almostSchemes{"postgresql:", "postgresql//",
                                                        "postgres:", "postgres//"};

bool IsAlmostServer(std::string text) {
    std::ranges::transform(text, text.begin(), [](char character) {
        return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a')
                                                    : character;
    });
    const auto begins = [&](std::string_view scheme) { return text.starts_with(scheme); };
    return std::ranges::any_of(almostSchemes, begins) ||
           text.find("password=") != std::string::npos;
}

/// Whether there is an @ after a colon, as after a password. The colon of a drive is none of those.
bool MayHavePassword(std::string_view text) {
    const bool hasDrive = text.size() > 2 && text[1] == ':' && (text[2] == '\\' || text[2] == '/');
    const std::size_t colon = text.find(':', hasDrive ? 2 : 0);
    return colon != std::string_view::npos && text.find('@', colon) != std::string_view::npos;
}

bool IsThere(const std::string& name) {
    std::error_code ignored;
    return std::filesystem::exists(PathOf(name), ignored);
}

[[noreturn]] void Refuse(const std::string& why) {
    throw std::invalid_argument("the URL of the store " + why +
                                "; it is postgresql://USER@HOST:PORT/DATABASE");
}

/// Cuts a text at the first mark; the second half is nothing when there is none.
std::pair<std::string_view, std::optional<std::string_view>> Cut(std::string_view text, char mark) {
    const std::size_t place = text.find(mark);
    if (place == std::string_view::npos)
        return {text, std::nullopt};
    return {text.substr(0, place), text.substr(place + 1)};
}

/// With %XX as the byte that it stands for.
std::string Decoded(std::string_view text) {
    std::string decoded;
    for (std::size_t place = 0; place < text.size(); ++place) {
        if (text[place] != '%') {
            decoded += text[place];
            continue;
        }
        unsigned byte = 0;
        const std::string_view digits = text.substr(place + 1, 2);
        const auto [end, error] =
            std::from_chars(digits.data(), digits.data() + digits.size(), byte, 16);
        if (digits.size() != 2 || error != std::errc() || end != digits.data() + 2)
            Refuse("has a % without two hexadecimal digits after it");
        if (byte == 0)
            Refuse("has a NUL character");
        decoded += static_cast<char>(byte);
        place += 2;
    }
    return decoded;
}

/// The host of "HOST:PORT" or "[ADDRESS]:PORT", and what follows its colon.
std::pair<std::string_view, std::optional<std::string_view>> CutPort(std::string_view place) {
    if (!place.starts_with('['))
        return Cut(place, ':');
    const auto [address, rest] = Cut(place.substr(1), ']');
    if (!rest || (!rest->empty() && !rest->starts_with(':')))
        Refuse("has a [ that is not the begin of an address in brackets");
    if (rest->empty())
        return {address, std::nullopt};
    return {address, rest->substr(1)};
}

void CheckPort(std::string_view port) {
    unsigned number = 0;
    const char* const end = port.data() + port.size();
    const auto [parsed, error] = std::from_chars(port.data(), end, number);
    constexpr unsigned last = 65535;
    if (error != std::errc() || parsed != end || number == 0 || number > last)
        Refuse("has a port that is no number from 1 to 65535");
}

} // namespace

StoreName StoreName::Parse(const std::string& text) {
    if (text.empty())
        throw std::invalid_argument("the store has no name");
    if (text.find('\0') != std::string::npos)
        throw std::invalid_argument("the name of the store has a NUL character");
    StoreName name;
    const auto begins = [&](std::string_view scheme) { return text.starts_with(scheme); };
    name.m_isServer = std::ranges::any_of(schemes, begins);
    if (name.m_isServer)
        name.ParseServer(text);
    else if (text.find("://") != std::string::npos)
        Refuse("is of another kind than this program knows");
    else if (IsAlmostServer(text))
        Refuse("is not understood");
    else if (MayHavePassword(text) && !IsThere(text))
        Refuse(
            "is not understood, and there is no file of that name, which has an @ after a colon");
    else if (text.ends_with('/'))
        throw std::invalid_argument("the name of the store ends with a slash, as that of a folder "
                                    "does; it is a file");
    else
        name.m_shown = name.m_file = text;
    return name;
}

void StoreName::ParseServer(const std::string& text) {
    const std::string_view url = std::string_view(text).substr(text.find("://") + 3);
    const auto [address, query] = Cut(url, '?');
    const auto [authority, database] = Cut(address, '/');
    if (std::ranges::count(url, '@') > 1 || url.find_first_of(" #\t\r\n") != std::string_view::npos)
        Refuse("is not understood: in a user's name or a password, @ is %40, / is %2F, # is %23, "
               "? is %3F and a blank is %20");
    const auto [before, after] = Cut(authority, '@');
    if (!after && url.find('@') != std::string_view::npos)
        Refuse("is not understood: in a user's name or a password, / is %2F and ? is %3F");
    const auto [user, password] =
        after ? Cut(before, ':') : std::pair(std::string_view(), std::optional<std::string_view>());
    const auto [host, port] = CutPort(after ? *after : before);
    if (port)
        CheckPort(*port);
    Take("user", user);
    Take("password", password);
    Take("host", host);
    Take("port", port);
    Take("dbname", database);
    TakeSettings(query.value_or(std::string_view()));
    m_shown = "postgresql://";
    if (!user.empty())
        m_shown += std::string(user) + "@";
    m_shown += after ? *after : before;
    m_shown += database ? "/" + std::string(*database) : "";
    m_shown += query ? "?" + std::string(*query) : "";
}

void StoreName::Take(std::string_view key, std::optional<std::string_view> value) {
    if (value && !value->empty())
        m_connection[std::string(key)] = Decoded(*value);
}

void StoreName::TakeSettings(std::string_view query) {
    while (!query.empty()) {
        const auto [setting, others] = Cut(query, '&');
        const auto [key, value] = Cut(setting, '=');
        if (std::ranges::find(settings, key) == settings.end() || !value)
            Refuse("has a setting after its ? that is none of application_name, connect_timeout, "
                   "host, options and passfile");
        Take(key, value);
        query = others.value_or(std::string_view());
    }
}

StoreName StoreName::Default(const Environment& environment, Folders folders) {
    const auto value = [&](const std::string& variable) {
        return environment(variable).value_or("");
    };
    if (const std::string named = value("SARVEXTOOL_STORE"); !named.empty())
        return Parse(named);
    StoreName name;
    name.m_isUsersOwn = true;
    const std::string local = folders == Folders::OfWindows ? value("LOCALAPPDATA") : "";
    if (!local.empty())
        name.m_file = local + "\\SarvexTool\\history.db";
    else if (const std::string data = value("XDG_DATA_HOME"); data.starts_with('/'))
        name.m_file = data + "/sarvextool/history.db";
    else if (const std::string home = value("HOME"); !home.empty())
        name.m_file = home + "/.local/share/sarvextool/history.db";
    else
        throw std::invalid_argument("the environment names no folder of the user's; name the store "
                                    "with --store or SARVEXTOOL_STORE");
    name.m_shown = name.m_file;
    return name;
}

} // namespace Bench
