#pragma once

#include <deque>
#include <string>
#include <vector>

/// A line as it is filed in result.xml.
struct PlainMeasurement {
    std::string band;
    std::string bandwidth;
    std::string channel;
    std::string rate;
    /// The name of the element: "chain" and the cell.
    std::string chains;
    std::string power;
    /// The four cells that are attributes, in the order of resultAttributes.
    std::vector<std::string> attributes;

    auto operator<=>(const PlainMeasurement&) const = default;
};

/// A whole run of the power test once more, written for plainness: the fuzz target compares the
/// real one with it.
struct PlainTestRun {
    /// What DynamicTest::Run returns.
    int result = 0;
    std::string countryCode = "-";
    /// Whether each line is followed by the longer pause.
    bool isSlow = false;
    int pauses = 0;
    std::string csv;
    /// One for each row of csv but its header, in the order of the lines.
    std::vector<PlainMeasurement> measurements;
    /// The bodies of the requests.
    std::vector<std::string> commands;
};

/// pieces is what the daemon sends, as in PlainReceive.
PlainTestRun RunPlainly(const std::string& testFile, std::deque<std::string> pieces);
