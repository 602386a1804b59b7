#include "fuzz/Support/PlainTestRun.h"

#include "Modules/xFramework/Core/Classes/Value.h"
#include "Tools/Vemo/VemoClient/DynamicTest/Columns.h"
#include "fuzz/Support/Input.h"
#include "fuzz/Support/PlainReply.h"

#include <map>
#include <sstream>
#include <string_view>

namespace {

namespace Column = PowerTest::Column;
using Cells = std::vector<std::string>;
using Positions = std::map<std::string, std::size_t>;

/// Ends the run of the lines.
struct RunFailure {};

bool IsOneOf(char character, std::string_view characters) {
    return characters.find(character) != std::string_view::npos;
}

std::string Trim(std::string text) {
    const std::string untrimmed = text;
    while (!text.empty() && IsOneOf(text.back(), "\r\n\t "))
        text.pop_back();
    while (!text.empty() && IsOneOf(text.front(), "\r\n\t "))
        text.erase(0, 1);
    return text.empty() ? untrimmed : text;
}

Cells SplitCells(const std::string& line) {
    Cells cells;
    for (const std::string& cell : Split(line, ',')) {
        if (!cell.empty())
            cells.push_back(Trim(cell));
    }
    return cells;
}

/// What follows the first label that has a value, which is what Read takes off a text;
/// nothing when Read gives an empty text for every label.
template <typename Read>
std::string FindValue(const std::string& text, const std::string& label, const Read& read) {
    for (std::size_t hit = text.find(label); hit != std::string::npos;
         hit = text.find(label, hit + 1)) {
        const std::string value = read(text.substr(hit + label.size()));
        if (!value.empty())
            return value;
    }
    return "";
}

std::string TakeAny(const std::string& text, std::string_view characters) {
    std::size_t count = 0;
    while (count < text.size() && IsOneOf(text[count], characters))
        ++count;
    return text.substr(0, count);
}

/// A number with any count of dots, if " dBm" follows.
std::string TakePower(const std::string& text) {
    constexpr std::string_view digits = "0123456789";
    std::string power = text.starts_with('-') ? "-" : "";
    const std::string whole = TakeAny(text.substr(power.size()), digits);
    power += whole;
    power += TakeAny(text.substr(power.size()), ".");
    power += TakeAny(text.substr(power.size()), digits);
    return !whole.empty() && text.substr(power.size()).starts_with(" dBm") ? power : "";
}

/// The last power of the chain in the line after the label.
std::string TakeLastPower(const std::string& text, const std::string& chainLabel) {
    const std::string line = text.substr(0, text.find_first_of("\r\n"));
    std::string last;
    for (std::size_t hit = line.find(chainLabel); hit != std::string::npos;
         hit = line.find(chainLabel, hit + 1)) {
        const std::string power = TakePower(line.substr(hit + chainLabel.size()));
        last = power.empty() ? last : power;
    }
    return last;
}

std::string PowerOr(const std::string& reply, const std::string& chainLabel) {
    const std::string power = FindValue(reply, "Target Power: ", [&](const std::string& text) {
        return TakeLastPower(text, chainLabel);
    });
    return power.empty() ? "NA" : power;
}

class Runner {
public:
    explicit Runner(std::deque<std::string> pieces) : m_pieces(std::move(pieces)) {}

    PlainTestRun Run(const std::string& testFile) {
        AskForMacType();
        AskForCountryCode();
        try {
            RunLines(testFile);
        } catch (const RunFailure&) {
            m_run.result = 1;
        }
        return m_run;
    }

private:
    std::string Ask(const std::string& arguments) {
        m_run.commands.push_back("CLI -1 -vemo" + arguments);
        int reads = 0;
        const PlainReply reply = PlainSort(PlainReceive(m_pieces, reads));
        if (!reply.problem.empty())
            throw RunFailure();
        return reply.allLines;
    }

    std::string AskOrNothing(const std::string& arguments) {
        try {
            return Ask(arguments);
        } catch (const RunFailure&) {
            return "";
        }
    }

    void AskForMacType() {
        const std::string label = "Mac Type: ";
        const std::string reply = AskOrNothing(" -wifi-get-mac-type");
        const std::size_t hit = reply.find(label);
        if (hit == std::string::npos)
            return;
        const std::string digits = TakeAny(reply.substr(hit + label.size()), "0123456789");
        const std::size_t significant = digits.find_first_not_of('0');
        m_run.isSlow = significant != std::string::npos && digits.substr(significant) == "16";
    }

    void AskForCountryCode() {
        const std::string code =
            FindValue(AskOrNothing(" -wifi-get-mcc"), "Current MCC: ", [](const std::string& text) {
                const std::string word = TakeAny(
                    text, "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_");
                return word.size() < 2 ? "" : word.substr(0, 2);
            });
        m_run.countryCode = code.empty() ? "-" : code;
    }

    void RunLines(const std::string& testFile) {
        std::istringstream file(testFile);
        std::string line;
        std::getline(file, line);
        TakeHeader(line);
        while (std::getline(file, line)) {
            RunLine(line);
            ++m_run.pauses;
        }
    }

    void TakeHeader(const std::string& header) {
        Positions positions;
        const Cells titles = SplitCells(header);
        for (std::size_t position = 0; position < titles.size(); ++position) {
            if (IsColumn(titles[position]))
                positions[titles[position]] = position;
            else
                return;
        }
        m_positions = positions;
        m_run.csv += header + ",Chain-A Power, Chain B Power\n";
    }

    static bool IsColumn(const std::string& title) {
        for (const PowerTest::ColumnCommand& row : PowerTest::columnCommands) {
            if (row.column == title)
                return true;
        }
        return false;
    }

    /// "-" when the line does not set the column.
    std::string Cell(const Cells& cells, const std::string& column) const {
        const auto position = m_positions.find(column);
        const bool isThere = position != m_positions.end() && position->second < cells.size();
        return isThere ? cells[position->second] : "-";
    }

    void RunLine(const std::string& line) {
        const std::string reply = Ask(Configuration(SplitCells(line)) +
                                      " -wifi-calibrate-tx -wifi-mode tx_modulated -wifi-start");
        Ask(" -wifi-stop");
        const std::string extended =
            line + "," + PowerOr(reply, "Chain A (1) ") + "," + PowerOr(reply, "Chain B (2) ");
        m_run.csv += extended + "\n";
        File(SplitCells(extended));
    }

    std::string Configuration(const Cells& cells) const {
        std::string arguments;
        for (const auto& [column, option] : PowerTest::columnCommands) {
            const std::string cell = Cell(cells, column);
            if (cell == "-")
                continue;
            // A cell such as {int:07} is a value of that type and travels as its text.
            const std::string text = Core::Value(cell).ToString();
            const std::string quote = text.find(' ') == std::string::npos ? "" : "\"";
            arguments += " " + std::string(option) + " " + quote + text + quote;
        }
        return arguments;
    }

    void File(const Cells& cells) {
        PlainMeasurement measurement;
        const std::string chains = Cell(cells, Column::chains);
        measurement.band = Cell(cells, Column::band);
        measurement.bandwidth = Cell(cells, Column::bandwidth) + " MHz";
        measurement.channel = Cell(cells, Column::channel);
        measurement.rate = Cell(cells, Column::rate);
        measurement.chains = "chain" + chains;
        if (chains == "A" || chains == "AB")
            measurement.power = cells[cells.size() - 2];
        if (chains == "B")
            measurement.power = cells[cells.size() - 1];
        measurement.power += "dBm";
        for (const PowerTest::ResultAttribute& attribute : PowerTest::resultAttributes)
            measurement.attributes.push_back(Cell(cells, attribute.column));
        m_run.measurements.push_back(measurement);
    }

    std::deque<std::string> m_pieces;
    Positions m_positions;
    PlainTestRun m_run;
};

} // namespace

PlainTestRun RunPlainly(const std::string& testFile, std::deque<std::string> pieces) {
    return Runner(std::move(pieces)).Run(testFile);
}
