// Property: whatever the test file and the daemon's answers hold, a run sends the commands, makes
// the pauses, ends with the result and writes the rows of result.csv, byte for byte, that a plain
// run by the rules gives. result.xml is empty after a failed run and otherwise holds one
// measurement for each row; where no text holds markup, a reader of XML finds exactly the
// measurements of the plain run. No exception is left undeleted.
//
// Input: a group with the test file, then one with the pieces of the answers, one record each.

#include "Modules/xFramework/Utilities/Exception.h"
#include "Modules/xFramework/Utilities/Log.h"
#include "Modules/xFramework/Utilities/LogPrinter.h"
#include "Modules/xFramework/Utilities/Singleton.h"
#include "Tools/Vemo/VemoClient/DynamicTest/Columns.h"
#include "Tools/Vemo/VemoClient/DynamicTest/DynamicTest.h"
#include "fuzz/Support/Check.h"
#include "fuzz/Support/Input.h"
#include "fuzz/Support/PlainTestRun.h"
#include "tests/Modules/xFramework/OSAL/Fake/World.h"
#include "tests/Tools/SarvexTool/Client/ConsoleCapture.h"
#include "tests/Tools/Vemo/VemoClient/DynamicTest/WorkingDirectory.h"

#include <pugixml.hpp>

#include <algorithm>
#include <filesystem>

namespace {

using OSAL::Fake::CountCalls;
using OSAL::Fake::TheWorld;

/// The trace of every function makes a run of this target several times longer; the other targets
/// have the log on.
void SilenceTrace() {
    SingletonWrapper<Utilities::LogPrinter>()->SetLevelMask("stream", Utilities::LogLevel::Error);
}

/// A file system may write a file out as soon as one that was emptied is filled again; for new
/// files it takes its time, and so the fuzzer gets through many times more inputs.
void RemoveFiles() {
    for (const char* name : {"test.csv", "result.csv", "result.xml"})
        std::filesystem::remove(name);
}

/// Each line costs two exchanges, and a few of them show what one leaves to the next.
std::string FirstLines(const std::string& testFile) {
    constexpr int mostLines = 5;
    std::size_t size = 0;
    for (int count = 0; count < mostLines && size < testFile.size(); ++count)
        size = std::min(testFile.find('\n', size), testFile.size() - 1) + 1;
    return testFile.substr(0, size);
}

int RunReally(const std::string& testFile, const std::vector<std::string>& pieces) {
    RemoveFiles();
    OSAL::Fake::Reset();
    TheWorld().files["/bench/Socket.cfg"].content = "8738";
    TheWorld().received.assign(pieces.begin(), pieces.end());
    WriteFile("test.csv", testFile);
    const ConsoleCapture console;
    return DynamicTest("test.csv").Run();
}

/// The bodies of the requests that were sent. Each is as long as its head says.
std::vector<std::string> SentCommands() {
    std::vector<std::string> commands;
    std::string rest = TheWorld().sent;
    while (!rest.empty()) {
        const std::string lengthLabel = "\r\nContent-Length: ";
        const std::size_t length =
            std::stoul(rest.substr(rest.find(lengthLabel) + lengthLabel.size()));
        const std::size_t body = rest.find("\r\n\r\n") + 4;
        Check(rest.starts_with("POST ") && body + length <= rest.size(),
              "every request is as long as it says");
        commands.push_back(rest.substr(body, length));
        rest.erase(0, body + length);
    }
    return commands;
}

void CheckCommands(const PlainTestRun& expected) {
    const std::vector<std::string> commands = SentCommands();
    CheckEqual(commands.size(), expected.commands.size(), "each line makes two exchanges");
    for (std::size_t index = 0; index < commands.size(); ++index)
        CheckEqual(commands[index], expected.commands[index],
                   "a line's cells are sent as they are");
    CheckEqual(CountCalls("Sleep 1000"), expected.pauses, "each line that succeeds makes a pause");
    CheckEqual(CountCalls("Sleep 4000"), expected.isSlow ? expected.pauses : 0,
               "a slow device gets a longer pause");
}

bool IsPlainCharacter(char character) {
    const bool isPrintable = character >= ' ' && character <= '~';
    return isPrintable && std::string("<>&\"'").find(character) == std::string::npos;
}

bool IsNameCharacter(char character) {
    return IsPlainCharacter(character) &&
           std::string(" !#$%()*+,/;=?@[]^`{|}~\\").find(character) == std::string::npos;
}

/// Whether a reader of XML can be expected to get the texts back.
bool HasNoMarkup(const PlainMeasurement& measurement) {
    const auto isPlain = [](const std::string& text) {
        return std::ranges::all_of(text, IsPlainCharacter);
    };
    return isPlain(measurement.band) && isPlain(measurement.bandwidth) &&
           isPlain(measurement.channel) && isPlain(measurement.rate) &&
           std::ranges::all_of(measurement.attributes, isPlain) &&
           std::ranges::all_of(measurement.chains, IsNameCharacter);
}

std::vector<PlainMeasurement> ReadMeasurements(const pugi::xml_node& table) {
    std::vector<PlainMeasurement> measurements;
    const auto value = [](const pugi::xml_node& node) { return node.attribute("value").value(); };
    for (const auto& band : table.children("Band"))
        for (const auto& bandwidth : band.children("Bandwidth"))
            for (const auto& channel : bandwidth.children("Channel"))
                for (const auto& rate : channel.children("Rate"))
                    for (const auto& chain : rate.children()) {
                        PlainMeasurement measurement{
                            value(band), value(bandwidth), value(channel),
                            value(rate), chain.name(),     chain.attribute("power").value(),
                            {}};
                        for (const PowerTest::ResultAttribute& attribute :
                             PowerTest::resultAttributes)
                            measurement.attributes.emplace_back(
                                chain.attribute(attribute.name).value());
                        measurements.push_back(measurement);
                    }
    return measurements;
}

void CheckReadableXml(const std::string& xml, const PlainTestRun& expected) {
    pugi::xml_document document;
    const auto read = document.load_buffer(xml.data(), xml.size(), pugi::parse_minimal);
    CheckEqual(std::string(read.description()), "No error", "result.xml is well formed");
    const pugi::xml_node table = document.child("PowerTable");
    CheckEqual(table.attribute("MCC").value(), expected.countryCode, "the country code is filed");
    auto measurements = ReadMeasurements(table);
    auto expectedMeasurements = expected.measurements;
    std::ranges::sort(measurements);
    std::ranges::sort(expectedMeasurements);
    Check(measurements == expectedMeasurements, "every row is filed with its cells");
}

void CheckXml(const PlainTestRun& expected) {
    const std::string xml = ReadFile("result.xml");
    if (expected.result != 0) {
        CheckEqual(xml, "", "a failed run leaves result.xml empty");
        return;
    }
    std::size_t count = 0;
    for (std::size_t hit = xml.find("<chain"); hit != std::string::npos;
         hit = xml.find("<chain", hit + 1))
        ++count;
    Check(xml.starts_with("<?xml version=\"1.0\" ?>\n<PowerTable"), "result.xml has its beginning");
    Check(count >= expected.measurements.size(), "result.xml holds a measurement for each row");
    if (std::ranges::all_of(expected.measurements, HasNoMarkup))
        CheckReadableXml(xml, expected);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const WorkingDirectory directory("sarvex-fuzz");
    SilenceTrace();
    const Parts groups(ToText(data, size), GroupSeparator);
    const std::string testFile = FirstLines(groups[0]);
    const std::vector<std::string> pieces = Split(groups[1], RecordSeparator);
    const PlainTestRun expected = RunPlainly(testFile, {pieces.begin(), pieces.end()});

    CheckEqual(RunReally(testFile, pieces), expected.result, "a run ends with its result");
    CheckCommands(expected);
    CheckEqual(ReadFile("result.csv"), expected.csv, "result.csv holds a row for each line");
    CheckXml(expected);
    Check(Utilities::Exception::GetLiveCount() == 0, "every exception is deleted");
    return 0;
}
