#pragma once

// Public, stable within a major version. A client belongs to one thread at a time. It owns its
// connection. Every exchange blocks, without a time limit. Errors are raised as
// Utilities::Exception*; a wrong return code is thrown by value.

#include "Modules/xFramework/Core/Classes/Value.h"
#include "Modules/xFramework/Streams/Sockets/SocketClientStream.h"
#include "Tools/SarvexTool/Client/CommandTable.h"

#include <list>
#include <string>

/// A client of the daemon: its address, the arguments that become the next command, the connection
/// and the text of the last answer.
class CliClient {
public:
    using Arguments = std::list<Core::Value>;

    /// Address "127.0.0.1", no connection, no arguments, no answer.
    CliClient() = default;

    /// Takes the arguments after the program path, then applies the "-remoteDaemon" option.
    CliClient(int argc, const char* const argv[]);

    /// Closes the connection made last.
    ~CliClient();

    CliClient(const CliClient&) = delete;
    CliClient& operator=(const CliClient&) = delete;

    /// Replaces the whole argument list.
    void SetArguments(const Arguments& arguments);

    /// Takes "-remoteDaemon" and the argument after it out of the list; that argument becomes the
    /// daemon's address, whatever its form. An option without an argument is taken out and changes
    /// nothing.
    void ApplyRemoteDaemonOption();

    /// Whether some argument equals the name.
    bool HasArgument(const std::string& name) const;

    /// Removes the first argument that equals the name; false when there is none.
    bool RemoveArgument(const std::string& name);

    /// Gives the first argument that equals the name another text; false when there is none.
    bool ReplaceArgument(const std::string& name, const std::string& text);

    /// The argument text of a command: before each argument a blank; an argument that contains a
    /// blank is put in double quotes. Nothing else is quoted or escaped.
    std::string BuildArguments() const;

    /// Reads the command table SarvexToolCmds.txt beside the program; empty when there is none or
    /// it is malformed. Raises an Utilities::Exception* "File ${1} is a link" when it is a link.
    SarvexTool::CommandTable ReadSarvexToolCommands() const;

    /// Whether all arguments are commands of the daemon's own; raises what reading the table
    /// raises.
    bool AreAllKnownCommands() const;

    /// Connects to the client's own remote address; the argument is ignored. Returns false, and
    /// prints nothing, when that fails for whatever reason. The connection made before is neither
    /// closed nor given back until the process ends: its peer may still be busy with the command.
    bool Connect(const std::string& address);

    /// The text of the last answer's body, each line followed by a line feed.
    std::string GetResponse() const { return m_response; }

    /// Makes one exchange: sends the arguments after the prefix as one command and, when asked to
    /// wait, receives the answer, prints its information on standard output and its errors on
    /// standard error, and returns its code. Without waiting it returns 0. A client that never got
    /// a connection behaves as if the answer were empty. Raises what sending raises; throws the
    /// reply's failure, and prints nothing then.
    int SendCommand(bool waitForAnswer, const std::string& prefix);

private:
    std::string Exchange(const std::string& request, bool waitForAnswer);

    std::string m_remoteAddress = "127.0.0.1";
    Utilities::xFrameworkStreams::Sockets::SocketClientStream* m_pStream = nullptr;
    Arguments m_arguments;
    std::string m_response;
};
