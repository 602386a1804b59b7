#include "Tools/Vemo/VemoClient/DynamicTest/DynamicTest.h"

#include "Modules/xFramework/OSAL/Process.h"
#include "Modules/xFramework/Utilities/Format.h"
#include "Modules/xFramework/Utilities/FunctionTrace.h"
#include "Modules/xFramework/Utilities/StringToInt.h"
#include "Tools/Vemo/VemoClient/DynamicTest/Columns.h"
#include "Tools/Vemo/VemoClient/DynamicTest/Failure.h"
#include "Tools/Vemo/VemoClient/DynamicTest/ReplySearch.h"

#include <iostream>
#include <optional>
#include <stdexcept>

namespace {

using PowerTest::Chain;
using PowerTest::chains;
using PowerTest::columnCommands;
using PowerTest::FailureOf;
using PowerTest::Fields;
using PowerTest::FindInReply;
using PowerTest::PrintError;
using PowerTest::SplitFields;
using PowerTest::TestFiles;
using Utilities::Format;
using Utilities::FunctionTrace;

constexpr int succeeded = 0;
constexpr int failed = 1;
constexpr std::uint32_t linePause = 1000;
constexpr std::uint32_t slowDevicePause = 4000;

/// Writes a line in one piece, and at once: a run that is killed leaves whole lines only. A long
/// line and its end apart would be two calls of the system.
void WriteLine(std::ostream& csv, const std::string& line) {
    csv << line + '\n' << std::flush;
}

} // namespace

DynamicTest::DynamicTest(const std::string& fileName)
    : m_testFileName(fileName), powerTableNode(resultDocument.GetTopNode()) {}

int DynamicTest::Run() {
    TestFiles files(m_testFileName, m_csvFileName, m_xmlFileName);
    if (!files.AreOpen()) {
        PrintError("Failed to open test file '${1}' or result file.", m_testFileName);
        return failed;
    }
    const std::int32_t macType = GetMacType();
    StartPowerTable(GetCurrentMccValue());
    const bool isComplete = ProcessTestFile(files, macType) && WriteResultDocument(files.xml);
    ReportDamage(files);
    return isComplete && !files.test.bad() ? succeeded : failed;
}

void DynamicTest::StartPowerTable(const std::string& countryCode) {
    powerTableNode = PowerTest::AddPowerTable(resultDocument, countryCode);
}

bool DynamicTest::ProcessTestFile(TestFiles& files, std::int32_t macType) {
    const std::optional<std::string> failure = FailureOf([&] {
        std::string line;
        // An empty file has an empty header.
        std::getline(files.test, line);
        ProcessHeaderTestFile(files.csv, line);
        while (std::getline(files.test, line)) {
            ProcessLineTestFile(files.csv, line);
            Pause(macType);
        }
    });
    // The misspelling is kept: scripts look for the message as it is.
    if (failure)
        PrintError("Failed to calcualte Tx Power limit: ${1}.", *failure);
    return !failure;
}

bool DynamicTest::WriteResultDocument(std::ostream& xml) const {
    const std::optional<std::string> failure = FailureOf([&] {
        if (!PowerTest::WriteDocument(resultDocument, xml))
            throw std::runtime_error(m_xmlFileName + ": it could not be written to its end");
    });
    if (failure)
        PrintError("Failed to create results xml file ${1}.", *failure);
    return !failure;
}

void DynamicTest::ReportDamage(const TestFiles& files) const {
    if (files.test.bad())
        PrintError("Failed to read test file '${1}' to its end.", m_testFileName);
    if (!files.csv)
        PrintError("Result file '${1}' is incomplete: it could not be written.", m_csvFileName);
}

void DynamicTest::Pause(std::int32_t macType) const {
    OSAL::Sleep(linePause);
    if (static_cast<std::uint32_t>(macType) == slowMacType)
        OSAL::Sleep(slowDevicePause);
}

void DynamicTest::ProcessHeaderTestFile(std::ostream& csv, const std::string& header) {
    const FunctionTrace trace("DynamicTest::ProcessHeaderTestFile");
    const Fields fields = SplitFields(header);
    // A test file with an unknown column still runs its lines, with the device as it is.
    if (!ValidateHeader(fields))
        return;
    BuildColumnIndex(fields);
    WriteLine(csv, header + csvPowerHeader);
}

bool DynamicTest::ValidateHeader(const Fields& fields) const {
    const std::string* pUnknown = PowerTest::FindUnknownColumn(fields);
    if (pUnknown == nullptr)
        return true;
    // The misspelling is kept: scripts look for the message as it is.
    PrintError("Invalid On-demand Colunm: '${1}'.", *pUnknown);
    return false;
}

void DynamicTest::BuildColumnIndex(const Fields& fields) {
    columnIndex = PowerTest::IndexColumns(fields);
}

void DynamicTest::ProcessLineTestFile(std::ostream& csv, std::string line) {
    const FunctionTrace trace("DynamicTest::ProcessLineTestFile");
    const Configuration configuration = ReadConfiguration(SplitFields(line));
    // The misspellings are kept: scripts look for this line as it is.
    std::cout << "Commiting and testing follwing config:" << std::endl;
    std::cout << configuration.description << std::endl;
    line += GetPowerLimitCsvFormat(CommitAndRunTest(configuration.arguments));
    WriteLine(csv, line);
    SaveResultsToXml(line);
}

DynamicTest::Configuration DynamicTest::ReadConfiguration(const Fields& fields) const {
    Configuration configuration;
    for (const auto& [column, option] : columnCommands) {
        if (!IsColumnSet(column, fields))
            continue;
        const std::string& value = fields[columnIndex.at(column)];
        configuration.description += Utilities::FillTemplate("${1} = ${2}, ", {column, value});
        configuration.arguments.emplace_back(std::string(option));
        configuration.arguments.emplace_back(value);
    }
    return configuration;
}

bool DynamicTest::IsColumnSet(const std::string& column, const Fields& fields) const {
    return PowerTest::IsColumnSet(columnIndex, column, fields);
}

std::string DynamicTest::CommitAndRunTest(Arguments arguments) {
    const FunctionTrace trace("DynamicTest::CommitAndRunTest");
    for (const char* text : {"-wifi-calibrate-tx", "-wifi-mode", "tx_modulated", "-wifi-start"})
        arguments.emplace_back(std::string(text));
    std::string reply = SendCommands(arguments);
    // What the daemon says to the stop is of no interest.
    SendCommands({std::string("-wifi-stop")});
    return reply;
}

std::string DynamicTest::SendCommands(const Arguments& arguments) {
    const FunctionTrace trace("DynamicTest::SendCommands");
    daemonClient.SetArguments(arguments);
    daemonClient.ApplyRemoteDaemonOption();
    // Whether there is a connection and what code the daemon returns is shown on the console: a
    // line without an answer is recorded as one without powers.
    daemonClient.Connect("127.0.0.1");
    daemonClient.SendCommand(true, "-vemo");
    return daemonClient.GetResponse();
}

std::int32_t DynamicTest::GetMacType() {
    const FunctionTrace trace("DynamicTest::GetMacType");
    std::int32_t macType = 0;
    const std::optional<std::string> failure = FailureOf([&] {
        const std::string reply = SendCommands({std::string("-wifi-get-mac-type")});
        if (const std::optional<std::string> digits = FindInReply(reply, macTypePattern))
            macType = Utilities::StringToInt(*digits);
    });
    if (failure)
        PrintError("-wifi-get-mac-type command failed: ${1}.", *failure);
    return macType;
}

std::string DynamicTest::GetCurrentMccValue() {
    const FunctionTrace trace("DynamicTest::GetCurrentMccValue");
    std::string countryCode = notSetMarker;
    const std::optional<std::string> failure = FailureOf([&] {
        const std::string reply = SendCommands({std::string("-wifi-get-mcc")});
        countryCode = FindInReply(reply, mccPattern).value_or(notSetMarker);
    });
    if (failure)
        PrintError("-wifi-get-mcc command failed: ${1}.", *failure);
    return countryCode;
}

std::string DynamicTest::GetPowerLimitCsvFormat(const std::string& reply) const {
    const FunctionTrace trace("DynamicTest::GetPowerLimitCsvFormat");
    std::string suffix;
    for (const Chain& chain : chains) {
        const Format pattern(targetPowerPattern, chain.letter, chain.number);
        suffix += "," + FindInReply(reply, pattern).value_or(PowerTest::missingPower);
    }
    return suffix;
}

void DynamicTest::SaveResultsToXml(const std::string& extendedLine) {
    const FunctionTrace trace("DynamicTest::SaveResultsToXml");
    PowerTest::FileLine(*this, powerTableNode, m_valueAttributeName, extendedLine);
}

XML::Node* DynamicTest::GetXmlNode(XML::Node* pParent, const std::string& name,
                                   const std::string& attribute, const std::string& value) const {
    const FunctionTrace trace("DynamicTest::GetXmlNode");
    const auto read = [&](const XML::Node& node) { return GetXmlNodeAttribute(node, attribute); };
    XML::Node* pFound = PowerTest::FindChild(*pParent, name, value, read);
    return pFound != nullptr ? pFound : PowerTest::AddChild(*pParent, name, attribute, value);
}

std::string DynamicTest::GetXmlNodeAttribute(const XML::Node& node,
                                             const std::string& attribute) const {
    const FunctionTrace trace("DynamicTest::GetXmlNodeAttribute");
    return node.GetAttribute(attribute.c_str());
}

std::string DynamicTest::GetResultValue(const std::string& column, const Fields& fields) const {
    const FunctionTrace trace("DynamicTest::GetResultValue");
    return PowerTest::ResultValue(columnIndex, column, fields);
}
