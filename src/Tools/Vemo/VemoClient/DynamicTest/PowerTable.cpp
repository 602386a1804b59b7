#include "Tools/Vemo/VemoClient/DynamicTest/PowerTable.h"

#include "Modules/xFramework/XML/Writer.h"

namespace PowerTest {

namespace {

/// The power that is filed for a line, empty for a Chains cell that files none.
std::string RecordedPower(const std::string& chainsCell, const Fields& extendedFields) {
    for (const ChainPower& power : chainPowers) {
        if (power.chains == chainsCell && power.fieldFromEnd <= extendedFields.size())
            return extendedFields[extendedFields.size() - power.fieldFromEnd];
    }
    return "";
}

/// The steps of filing, without a trace.
struct PlainSteps {
    const ColumnIndex& columns;

    std::string GetResultValue(const std::string& column, const Fields& fields) const {
        return ResultValue(columns, column, fields);
    }

    XML::Node* GetXmlNode(XML::Node* pParent, const std::string& name, const std::string& attribute,
                          const std::string& value) const {
        const auto read = [&attribute](const XML::Node& node) {
            return std::string(node.GetAttribute(attribute.c_str()));
        };
        XML::Node* pFound = FindChild(*pParent, name, value, read);
        return pFound != nullptr ? pFound : AddChild(*pParent, name, attribute, value);
    }
};

} // namespace

ColumnIndex IndexColumns(const Fields& header) {
    ColumnIndex columns;
    for (std::size_t position = 0; position < header.size(); ++position)
        columns[header[position]] = position;
    return columns;
}

bool IsColumnSet(const ColumnIndex& columns, const std::string& column, const Fields& fields) {
    const auto found = columns.find(column);
    if (found == columns.end() || found->second >= fields.size())
        return false;
    const std::string value = TrimField(fields[found->second]);
    return !value.empty() && value != unsetCell;
}

std::string ResultValue(const ColumnIndex& columns, const std::string& column,
                        const Fields& fields) {
    return IsColumnSet(columns, column, fields) ? fields[columns.at(column)] : unsetCell;
}

XML::Node* AddPowerTable(XML::Base& document, const std::string& countryCode) {
    XML::Node* pTable = document.GetTopNode()->AddChild("PowerTable");
    pTable->SetAttribute("MCC", countryCode.c_str());
    // No version is ever queried: the attribute is there for the readers of result.xml.
    pTable->SetAttribute("OTPVersion", unsetCell);
    return pTable;
}

XML::Node* AddChild(XML::Node& parent, const std::string& name, const std::string& attribute,
                    const std::string& value) {
    XML::Node* pAdded = parent.AddChild(name.c_str());
    pAdded->SetAttribute(attribute.c_str(), value.c_str());
    return pAdded;
}

void AddMeasurement(XML::Node& parent, const ResultCells& cells, const Fields& extendedFields) {
    const std::string& chainsCell = cells.at(Column::chains);
    XML::Node* pChain = parent.AddChild(("chain" + chainsCell).c_str());
    pChain->SetAttribute("power", (RecordedPower(chainsCell, extendedFields) + "dBm").c_str());
    for (const auto& [name, column] : resultAttributes)
        pChain->SetAttribute(name, cells.at(column).c_str());
}

bool WriteDocument(const XML::Base& document, std::ostream& xml) {
    XML::Writer writer(xml);
    document.Save(writer);
    return !xml.fail();
}

PowerTable::PowerTable(const Fields& header, const std::string& countryCode)
    : m_columns(IndexColumns(header)), m_pTable(AddPowerTable(m_document, countryCode)) {}

void PowerTable::File(const std::string& row) {
    FileLine(PlainSteps{m_columns}, m_pTable, valueAttribute, row);
}

} // namespace PowerTest
