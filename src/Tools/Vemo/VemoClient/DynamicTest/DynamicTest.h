#pragma once

#include "Modules/xFramework/XML/Base.h"
#include "Tools/SarvexTool/Client/CliClient.h"
#include "Tools/Vemo/VemoClient/DynamicTest/Columns.h"
#include "Tools/Vemo/VemoClient/DynamicTest/PowerTable.h"
#include "Tools/Vemo/VemoClient/DynamicTest/ReplySearch.h"
#include "Tools/Vemo/VemoClient/DynamicTest/TestFile.h"

#include <cstdint>
#include <list>
#include <ostream>
#include <string>

/// The table-driven transmit power test: commits each line of a test file to the device, starts a
/// calibrated transmission, and records the target powers that the daemon reports in result.csv and
/// result.xml, both in the current directory.
///
/// Progress goes to standard output. Errors go to standard error, without a line end between them.
/// Blocks for the exchanges with the daemon and for one second after each line, five seconds with a
/// slow device.
class DynamicTest {
public:
    using Arguments = std::list<Core::Value>;

    /// Opens nothing and sends nothing.
    explicit DynamicTest(const std::string& fileName);

    DynamicTest(const DynamicTest&) = delete;
    DynamicTest& operator=(const DynamicTest&) = delete;

    /// Runs the test; to be called once. Returns 0 when the test file was read to its end, every
    /// line was processed and result.xml was written, 1 otherwise. When a line fails, the rest of
    /// the file is skipped: the rows written so far stay in result.csv, and result.xml stays empty.
    ///
    /// A result.csv that could not be written to its end is reported and does not change the
    /// result.
    int Run();

    // The steps of a run.

    /// Takes the header's columns and copies the header to result.csv. A header with an unknown
    /// column is reported and leaves no column to be set, which does not end the run.
    void ProcessHeaderTestFile(std::ostream& csv, const std::string& header);

    /// Whether every field is the name of a column; reports the first that is none.
    bool ValidateHeader(const PowerTest::Fields& fields) const;

    /// Takes the position of each column; of a name given twice, the later one.
    void BuildColumnIndex(const PowerTest::Fields& fields);

    /// Commits one line, runs its transmission and records the powers. Throws what the
    /// exchange throws.
    void ProcessLineTestFile(std::ostream& csv, std::string line);

    /// Whether the line sets the column: the header has it, the line reaches it, and the cell is
    /// not "-". A cell of nothing but blanks is set.
    bool IsColumnSet(const std::string& column, const PowerTest::Fields& fields) const;

    /// Sends the configuration followed by the start of the transmission, then the stop. Returns
    /// the reply to the former.
    std::string CommitAndRunTest(Arguments arguments);

    /// One exchange on a connection of its own. Returns the reply, empty when there was no
    /// connection; the daemon's return code is not looked at.
    std::string SendCommands(const Arguments& arguments);

    /// The device's MAC type, 0 when the daemon does not tell. Reports and absorbs what goes wrong.
    std::int32_t GetMacType();

    /// The country code, "-" when the daemon does not tell. Reports and absorbs what goes wrong.
    std::string GetCurrentMccValue();

    /// What result.csv has after a line: a comma, the power of chain A, a comma, the power of
    /// chain B, as the daemon printed them in the reply; "NA" for one that is not there. Both
    /// chains are looked up, whatever the line sets.
    std::string GetPowerLimitCsvFormat(const std::string& reply) const;

    /// Files an extended line, which ends with the two powers, in the result tree. The cells are
    /// looked up in the extended line: in one that is too short the powers count for the columns
    /// that it lacks, as readers of result.xml expect.
    void SaveResultsToXml(const std::string& extendedLine);

    /// The parent's first child of that name whose attribute has that value, or a new one. The
    /// document owns it.
    XML::Node* GetXmlNode(XML::Node* pParent, const std::string& name, const std::string& attribute,
                          const std::string& value) const;

    /// The attribute's value, empty when the element has no such attribute.
    std::string GetXmlNodeAttribute(const XML::Node& node, const std::string& attribute) const;

    /// The cell of that column, "-" when the fields do not set it.
    std::string GetResultValue(const std::string& column, const PowerTest::Fields& fields) const;

private:
    /// A line as the daemon and the console get it.
    struct Configuration {
        Arguments arguments;
        std::string description;
    };

    void StartPowerTable(const std::string& countryCode);
    bool ProcessTestFile(PowerTest::TestFiles& files, std::int32_t macType);
    bool WriteResultDocument(std::ostream& xml) const;
    void ReportDamage(const PowerTest::TestFiles& files) const;
    void Pause(std::int32_t macType) const;
    Configuration ReadConfiguration(const PowerTest::Fields& fields) const;

    /// A cell with this value leaves its column unset; it is also every value that is not
    /// known.
    const std::string notSetMarker = PowerTest::unsetCell;
    const std::string m_csvFileName = "result.csv";
    const std::string m_xmlFileName = "result.xml";
    /// One title with a hyphen and one with a blank before it: readers of result.csv look for
    /// these.
    const std::string csvPowerHeader = PowerTest::powerTitles;
    /// The number may hold any count of dots. It is never converted, only copied.
    const std::string targetPowerPattern =
        R"(Target Power: .*Chain ${1} \(${2}\) (-?\d+\.*\d*) dBm)";
    const std::string mccPattern = PowerTest::countryCodePattern;
    const std::string macTypePattern = PowerTest::macTypePattern;
    const std::string m_valueAttributeName = PowerTest::valueAttribute;
    /// Devices of this MAC type need a longer pause after each line.
    const std::uint32_t slowMacType = 16;

    /// Empty until a valid header is read.
    PowerTest::ColumnIndex columnIndex;
    std::string m_testFileName;
    CliClient daemonClient;
    XML::Base resultDocument;
    /// Where the results are filed; belongs to resultDocument.
    XML::Node* powerTableNode;
};
