#pragma once

#include "Modules/xFramework/XML/Base.h"
#include "Tools/Vemo/VemoClient/DynamicTest/Columns.h"
#include "Tools/Vemo/VemoClient/DynamicTest/TestFile.h"

#include <cstddef>
#include <map>
#include <ostream>
#include <string>

namespace PowerTest {

/// The position of each column among the fields of a line.
using ColumnIndex = std::map<std::string, std::size_t>;

/// The columns of a header; of a name given twice, the later position.
ColumnIndex IndexColumns(const Fields& header);

/// Whether the line sets the column: the header has it, the line reaches it, and the cell is not
/// "-". A cell of nothing but blanks is set.
bool IsColumnSet(const ColumnIndex& columns, const std::string& column, const Fields& fields);

/// The cell of that column, "-" when the fields do not set it.
std::string ResultValue(const ColumnIndex& columns, const std::string& column,
                        const Fields& fields);

/// Adds the element under which the results are filed, with the country code ("-" for an unknown
/// one). It belongs to the document.
XML::Node* AddPowerTable(XML::Base& document, const std::string& countryCode);

/// The parent's first child of that name with that value, as read gives it of a node, unless the
/// value is empty; null when there is none.
template <typename Read>
XML::Node* FindChild(const XML::Node& parent, const std::string& name, const std::string& value,
                     const Read& read) {
    for (const auto [childName, pChild] : parent.GetChildren()) {
        const std::string childValue = read(*pChild);
        if (childName == name && !childValue.empty() && childValue == value)
            return pChild.get();
    }
    return nullptr;
}

/// A new child of that name with that attribute. The parent owns it.
XML::Node* AddChild(XML::Node& parent, const std::string& name, const std::string& attribute,
                    const std::string& value);

/// The cells of a line by their columns.
using ResultCells = std::map<std::string, std::string>;

/// Adds the measurement of a line, which ends with the two powers, to the element that its path
/// leads to.
void AddMeasurement(XML::Node& parent, const ResultCells& cells, const Fields& extendedFields);

/// Files an extended line, which ends with the two powers, in the tree below pTable. The attribute
/// of that name holds the values of the levels. The steps GetResultValue and GetXmlNode are the
/// caller's, so that it can trace each.
template <typename Steps>
void FileLine(const Steps& steps, XML::Node* pTable, const std::string& attribute,
              const std::string& extendedLine) {
    const Fields fields = SplitFields(extendedLine);
    ResultCells cells;
    for (const char* column : resultColumns)
        cells[column] = steps.GetResultValue(column, fields);
    XML::Node* pNode = pTable;
    for (const auto& [column, unit] : resultLevels)
        pNode = steps.GetXmlNode(pNode, column, attribute, cells[column] + unit);
    AddMeasurement(*pNode, cells, fields);
}

/// Writes the document as the text of result.xml. Returns whether all of it could be written.
bool WriteDocument(const XML::Base& document, std::ostream& xml);

/// The result tree of a power test by itself, without a test that runs: what is in result.xml after
/// a run whose rows are filed here. Throws std::bad_alloc only.
class PowerTable {
public:
    /// The columns are those of a header whose fields are all column names; without such a header
    /// there are no fields.
    PowerTable(const Fields& header, const std::string& countryCode);

    PowerTable(const PowerTable&) = delete;
    PowerTable& operator=(const PowerTable&) = delete;

    /// Files a row of result.csv, without its line end.
    void File(const std::string& row);

    /// Writes the tree as the text of result.xml. Returns whether all of it could be written.
    bool Write(std::ostream& xml) const { return WriteDocument(m_document, xml); }

private:
    ColumnIndex m_columns;
    XML::Base m_document;
    /// Belongs to m_document.
    XML::Node* m_pTable;
};

} // namespace PowerTest
