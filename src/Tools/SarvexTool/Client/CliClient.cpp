#include "Tools/SarvexTool/Client/CliClient.h"

#include "Modules/xFramework/OSAL/File.h"
#include "Modules/xFramework/Utilities/Exception.h"
#include "Modules/xFramework/Utilities/ProgramFiles.h"
#include "Tools/SarvexTool/Client/Reply.h"
#include "Tools/SarvexTool/Client/Request.h"

#include <algorithm>
#include <iostream>
#include <iterator>
#include <memory>
#include <sstream>
#include <utility>
#include <vector>

namespace {

using Utilities::xFrameworkStreams::Sockets::SocketClientStream;

/// Keeps a connection that another one has replaced open until the process ends.
void KeepOpen(SocketClientStream* pStream) {
    static auto* const replacedStreams = new std::vector<SocketClientStream*>;
    replacedStreams->push_back(pStream);
}

template <typename List>
auto FindArgument(List& arguments, const std::string& name) {
    return std::find_if(arguments.begin(), arguments.end(),
                        [&name](const Core::Value& argument) { return argument == name; });
}

void Print(const SarvexTool::Reply& reply) {
    std::cout << reply.Information() << std::flush;
    std::cerr << reply.Error() << std::flush;
}

} // namespace

CliClient::CliClient(int argc, const char* const argv[]) {
    for (int index = 1; index < argc; ++index)
        m_arguments.emplace_back(std::string(argv[index]));
    ApplyRemoteDaemonOption();
}

CliClient::~CliClient() {
    delete m_pStream;
}

void CliClient::SetArguments(const Arguments& arguments) {
    // A copy, for assigning to the elements would leave equal ones as they are.
    Arguments copy = arguments;
    m_arguments.swap(copy);
}

void CliClient::ApplyRemoteDaemonOption() {
    const auto option = FindArgument(m_arguments, "-remoteDaemon");
    if (option == m_arguments.end())
        return;
    const auto address = std::next(option);
    if (address == m_arguments.end()) {
        m_arguments.erase(option);
        return;
    }
    m_remoteAddress = address->ToString();
    m_arguments.erase(option, std::next(address));
}

bool CliClient::HasArgument(const std::string& name) const {
    return FindArgument(m_arguments, name) != m_arguments.end();
}

bool CliClient::RemoveArgument(const std::string& name) {
    const auto found = FindArgument(m_arguments, name);
    if (found == m_arguments.end())
        return false;
    m_arguments.erase(found);
    return true;
}

bool CliClient::ReplaceArgument(const std::string& name, const std::string& text) {
    const auto found = FindArgument(m_arguments, name);
    if (found == m_arguments.end())
        return false;
    *found = text;
    return true;
}

std::string CliClient::BuildArguments() const {
    std::string text;
    for (const Core::Value& argument : m_arguments) {
        const std::string argumentText = argument.ToString();
        const char* const quote = argumentText.find(' ') == std::string::npos ? "" : "\"";
        text.append(" ").append(quote).append(argumentText).append(quote);
    }
    return text;
}

SarvexTool::CommandTable CliClient::ReadSarvexToolCommands() const {
    const std::string path = Utilities::PathBesideProgram("SarvexToolCmds.txt");
    if (Utilities::IsLink(path))
        Utilities::Raise(Utilities::LinkMessage(path), {"src/Tools/SarvexTool/Client/CliClient",
                                                        293, "CliClient::ReadSarvexToolCommands"});
    std::istringstream file(OSAL::ReadTextFile(path));
    return SarvexTool::ReadCommandTable(file);
}

bool CliClient::AreAllKnownCommands() const {
    return SarvexTool::AreAllKnown(m_arguments, ReadSarvexToolCommands());
}

bool CliClient::Connect(const std::string& /*address*/) {
    try {
        auto pStream = std::make_unique<SocketClientStream>(m_remoteAddress);
        if (m_pStream != nullptr)
            KeepOpen(m_pStream);
        m_pStream = pStream.release();
        return true;
    } catch (...) {
        Utilities::TakeCaughtException();
        return false;
    }
}

int CliClient::SendCommand(bool waitForAnswer, const std::string& prefix) {
    m_response.clear();
    const std::string request = SarvexTool::BuildRequest(
        m_remoteAddress, SarvexTool::BuildCommandLine(prefix, BuildArguments()));
    std::string answer = Exchange(request, waitForAnswer);
    if (!waitForAnswer)
        return 0;
    SarvexTool::Reply reply = SarvexTool::SortReply(SarvexTool::CutHttpHead(std::move(answer)));
    // Printed first: a section may be a part of all lines, not a copy.
    if (!reply.failure)
        Print(reply);
    m_response = std::move(reply.allLines);
    if (reply.failure)
        std::rethrow_exception(reply.failure);
    return reply.returnCode;
}

std::string CliClient::Exchange(const std::string& request, bool waitForAnswer) {
    std::string answer;
    if (m_pStream == nullptr)
        return answer;
    m_pStream->Send(request);
    if (waitForAnswer)
        m_pStream->Receive(answer);
    return answer;
}
