// Property: whatever the arguments, the system and the daemon's answer, a run of the client sends,
// says and returns what a plain run by the rules does. One request goes out whose head tells its
// body's length, or none where something is refused or fails before; both outputs hold what the
// answer's sections say; the exit code is 0 for the bare call, 1 without a connection, 258 without
// the wanted daemon, 256 for an error on the client's side and otherwise the answer's, or the
// test's. No exception is left undeleted.
//
// Input: a character whose low bits choose what fails, then groups with the arguments and with the
// pieces of the answer, one record each, and one with the command table.

#include "Modules/xFramework/Core/Classes/Value.h"
#include "Modules/xFramework/Utilities/Exception.h"
#include "Tools/SarvexTool/Client/CommandTable.h"
#include "Tools/SarvexTool/Client/Program/EntryPoint.h"
#include "fuzz/Support/Check.h"
#include "fuzz/Support/Input.h"
#include "fuzz/Support/PlainReply.h"
#include "tests/Modules/xFramework/OSAL/Fake/World.h"
#include "tests/Tools/SarvexTool/Client/ConsoleCapture.h"
#include "tests/Tools/SarvexTool/Client/ProgramDirectory.h"
#include "tests/Tools/Vemo/VemoClient/DynamicTest/WorkingDirectory.h"

#include <algorithm>
#include <optional>
#include <sstream>

namespace {

using OSAL::Fake::TheWorld;
using Arguments = std::vector<Core::Value>;

/// What is scripted.
struct Scene {
    explicit Scene(const std::string& input)
        : Scene(input.empty() ? 0u : static_cast<unsigned>(input.front()),
                Parts(input.empty() ? "" : input.substr(1), GroupSeparator)) {}

    bool isRefused;
    bool isDaemonBroken;
    bool isDaemonRunning;
    bool isTableALink;
    std::vector<std::string> arguments;
    std::vector<std::string> pieces;
    std::string table;

private:
    Scene(unsigned choice, const Parts& groups)
        : isRefused(choice & 1),
          isDaemonBroken(choice & 2),
          isDaemonRunning(choice & 4),
          isTableALink(choice & 8),
          pieces(Split(groups[1], RecordSeparator)),
          table(groups[2]) {
        if (groups[0].empty())
            return;
        for (const std::string& argument : Split(groups[0], RecordSeparator))
            arguments.push_back(UpToNul(argument));
    }
};

/// What a run is to come to.
struct Outcome {
    int code = 0;
    std::string output;
    std::string error;
    /// The body of the one request; nothing when none is sent.
    std::optional<std::string> body;
    std::string host = "127.0.0.1";
    /// The test's result takes the place of the code.
    bool runsTest = false;
};

/// Ends the run with that outcome.
struct Ended {
    Outcome outcome;
};

/// The rules of a run, one after the other.
class PlainRun {
public:
    explicit PlainRun(const Scene& scene) : m_scene(scene) {}

    Outcome Run() {
        try {
            RunSteps();
            return m_outcome;
        } catch (const Ended& ended) {
            return ended.outcome;
        }
    }

private:
    [[noreturn]] void End(int code, const std::string& error) {
        m_outcome.code = code;
        m_outcome.error = error;
        throw Ended{m_outcome};
    }

    void RunSteps() {
        std::vector<std::string> texts = m_scene.arguments;
        if (texts.empty()) {
            m_outcome.output = "Usage: program [args]\n";
            return;
        }
        if (std::string& last = texts.back();
            !last.empty() && std::isspace(static_cast<unsigned char>(last.back())))
            last.pop_back();
        m_list.assign(texts.begin(), texts.end());
        TakeAddress();
        TakeTestFiles(texts);
        if (Holds("-?") || Holds("-help"))
            m_outcome.output = SarvexTool::usageText;
        OpenDaemon();
        Replace("-connect", "-connectbin");
        Replace("-disconnect", "-disconnectxvt");
        Exchange(Prefix());
    }

    Arguments::iterator Find(const std::string& name) {
        return std::find_if(m_list.begin(), m_list.end(),
                            [&](const Core::Value& argument) { return argument == name; });
    }

    bool Holds(const std::string& name) { return Find(name) != m_list.end(); }

    bool Remove(const std::string& name) {
        const auto found = Find(name);
        if (found == m_list.end())
            return false;
        m_list.erase(found);
        return true;
    }

    void Replace(const std::string& name, const std::string& text) {
        if (const auto found = Find(name); found != m_list.end())
            *found = text;
    }

    void TakeAddress() {
        const auto option = Find("-remoteDaemon");
        if (option == m_list.end())
            return;
        const auto next = m_list.erase(option);
        if (next == m_list.end())
            return;
        m_outcome.host = next->ToString();
        m_list.erase(next);
    }

    void TakeTestFiles(const std::vector<std::string>& texts) {
        for (std::size_t index = 0; index + 1 < texts.size(); ++index) {
            if (texts[index] != "-wifi-test-by-file")
                continue;
            m_hasTestFile = true;
            Remove("-wifi-test-by-file");
            Remove(texts[index + 1]);
        }
    }

    void OpenDaemon() {
        const bool mustStart = Remove("-open_local_daemon") && !m_scene.isDaemonRunning;
        if (mustStart && m_scene.isDaemonBroken)
            End(258, "Error occurred: Can't start SarvexTool daemon. Error code: 0\n");
    }

    std::string Prefix() {
        if (m_scene.isTableALink)
            End(256, "File /bench/SarvexToolCmds.txt is a link\n");
        std::istringstream file(m_scene.table);
        return SarvexTool::AreAllKnown({m_list.begin(), m_list.end()},
                                       SarvexTool::ReadCommandTable(file))
                   ? ""
                   : "-vemo ";
    }

    std::string CommandLine(const std::string& prefix) const {
        std::string line = "CLI -1 " + prefix;
        for (const Core::Value& argument : m_list) {
            const std::string text = argument.ToString();
            const std::string quote = text.find(' ') == std::string::npos ? "" : "\"";
            line += " " + quote + text + quote;
        }
        return line;
    }

    void Exchange(const std::string& prefix) {
        if (m_scene.isRefused)
            End(1, "Failed to connect to daemon. Please ensure that daemon was started.\n");
        m_outcome.body = CommandLine(prefix);
        std::deque<std::string> pieces(m_scene.pieces.begin(), m_scene.pieces.end());
        int reads = 0;
        const PlainReply reply = PlainSort(PlainReceive(pieces, reads));
        if (!reply.problem.empty())
            End(256, "Failed to handle commands.\n");
        m_outcome.output += reply.information;
        m_outcome.error = reply.error;
        m_outcome.code = reply.returnCode;
        m_outcome.runsTest = m_hasTestFile;
    }

    const Scene& m_scene;
    Arguments m_list;
    bool m_hasTestFile = false;
    Outcome m_outcome;
};

/// Where a test finds its file and puts its results.
struct TestDirectory : WorkingDirectory {
    TestDirectory() : WorkingDirectory("sarvex-fuzz") { WriteFile("test.csv", "Band\n5\n"); }
};

void Script(const Scene& scene) {
    ProgramDirectory::Reset();
    ProgramDirectory::Write("SarvexToolCmds.txt", scene.table);
    TheWorld().files[ProgramDirectory::Path("SarvexToolCmds.txt")].hardLinks =
        scene.isTableALink ? 2 : 1;
    TheWorld().connectSucceeds = [&](int) { return !scene.isRefused; };
    TheWorld().childStarts = !scene.isDaemonBroken;
    TheWorld().pipeOutput = scene.isDaemonRunning ? "vemo.exe" : "";
    TheWorld().received.assign(scene.pieces.begin(), scene.pieces.end());
}

int RunReally(const Scene& scene) {
    std::vector<const char*> pointers{"program"};
    for (const std::string& argument : scene.arguments)
        pointers.push_back(argument.c_str());
    return SarvexTool::RunClient(static_cast<int>(pointers.size()), pointers.data());
}

/// The head's fixed text has 482 bytes.
void CheckRequest(const std::string& request, const Outcome& expected) {
    const std::string& body = *expected.body;
    const std::string length = std::to_string(body.size());
    const std::string& host = expected.host;
    CheckEqual(request.size(), 482 + 3 * host.size() + length.size() + body.size(),
               "a request is its fixed text and its fields");
    Check(request.starts_with("POST /api/oemtools/command HTTP/1.1\r\nHost: " + host +
                              ":8738\r\nConnection: keep-alive\r\nContent-Length: " + length +
                              "\r\nAccept: "),
          "a request tells its host and its body's length");
    CheckEqual(request.substr(request.size() - body.size() - 4), "\r\n\r\n" + body,
               "a request ends with the command line");
}

void CheckSent(const Outcome& expected) {
    const std::string& sent = TheWorld().sent;
    if (!expected.body)
        CheckEqual(sent, "", "nothing is sent where something is refused or fails");
    else if (expected.runsTest)
        Check(sent.starts_with("POST "), "the command goes out before the test");
    else
        CheckRequest(sent, expected);
}

void CheckRun(const Scene& scene, const Outcome& expected) {
    const ConsoleCapture console;
    const int code = RunReally(scene);
    CheckSent(expected);
    if (expected.runsTest) {
        Check(code == 0 || code == 1, "a test ends with 0 or 1");
        Check(console.Out().starts_with(expected.output), "the answer is printed before the test");
        return;
    }
    CheckEqual(code, expected.code, "a run ends with its code");
    CheckEqual(console.Out(), expected.output, "the information is printed");
    CheckEqual(console.Err(), expected.error, "the errors are printed");
    Check(code != 256 || !console.Err().empty(), "an error is named");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const TestDirectory directory;
    const Scene scene(ToText(data, size));
    Script(scene);
    CheckRun(scene, PlainRun(scene).Run());
    Check(Utilities::Exception::GetLiveCount() == 0, "every exception is deleted");
    return 0;
}
