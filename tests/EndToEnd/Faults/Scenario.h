#pragma once

#include "tests/EndToEnd/Faults/Steps.h"

#include <string>
#include <vector>

namespace EndToEnd::Faults {

/// What the client leaves. Texts have line feeds here; the platform's text mode is applied
/// to them before they are compared.
struct Outcome {
    /// The client's own code, before it is fitted to what the system keeps.
    int exitCode = 0;
    std::string out = {};
    std::string err = {};
    /// result.csv; empty when there is none.
    std::string rows = {};
    /// The network decides how much of out arrives: any beginning of it that is followed by a line
    /// end is right too.
    bool outMayBeCut = false;
};

/// One fault: what the peer does, and what the client must make of it.
struct Scenario {
    std::string name;
    /// What the peer does on each connection, in the order in which they are made. None at all: it
    /// does not listen.
    std::vector<Script> scripts;
    /// One; several where the network decides which of them it is.
    std::vector<Outcome> permitted;
    /// The bodies of the requests that reach the peer.
    std::vector<std::string> commands = {"CLI -1 -vemo  -x"};
    /// The peer breaks the connection before it has read all of the requests.
    bool requestIsCut = false;
    std::vector<std::string> arguments = {"-x"};
    /// test.csv in the client's working directory.
    std::string testFile = {};
    /// The program to run.
    std::string client = "SarvexToolClient";
};

/// The answer to a request that was taken whole and to which the script then reacts.
Scenario Answering(const std::string& name, const Script& reaction, const Outcome& outcome);

/// As Answering, for an answer that is sent in one segment and then ended by the end of the
/// connection.
Scenario Closing(const std::string& name, const std::string& answer, const Outcome& outcome);

/// As Answering, for an answer that is sent in one segment and ends while the connection stays.
Scenario Holding(const std::string& name, const std::string& answer, const Outcome& outcome);

/// The request that brings a command line to a daemon on 127.0.0.1.
std::string RequestOf(const std::string& commandLine);

inline const std::string head = "HTTP/1.1 200 OK\r\nContent-Type: text/plain\r\n\r\n";
inline const Outcome nothingCame{0, "\n", ""};
inline const Outcome sendingFailed{256, "", "Failed Sending message\n"};
inline const Outcome codeIsNoNumber{256, "", "Failed to handle commands.\n"};

} // namespace EndToEnd::Faults
