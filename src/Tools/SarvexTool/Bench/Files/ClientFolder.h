#pragma once

#include <cstdint>
#include <string>

namespace Bench {

/// The private folder that the clients of a run work in: a copy of the client, of its table of
/// commands if there is one, and a Socket.cfg that leads to the relay. All names are in UTF-8.
class ClientFolder {
public:
    /// Makes the folder anew, whatever a run that was killed has left in its place. The port is
    /// from 1000 to 9999: the client reads four digits. Throws BadInput for a client that cannot be
    /// used, and std::system_error when a file cannot be written.
    ClientFolder(std::string folder, const std::string& client, std::uint16_t port);
    /// Removes the folder.
    ~ClientFolder();
    ClientFolder(const ClientFolder&) = delete;
    ClientFolder& operator=(const ClientFolder&) = delete;

    const std::string& Path() const { return m_folder; }
    /// The copy of the client.
    const std::string& Program() const { return m_program; }
    /// The test file that a client gets.
    std::string Lines() const { return m_folder + "/lines.csv"; }
    /// What a client writes.
    std::string Result() const { return m_folder + "/result.csv"; }

private:
    void Fill(const std::string& client, std::uint16_t port);

    std::string m_folder;
    std::string m_program;
};

} // namespace Bench
