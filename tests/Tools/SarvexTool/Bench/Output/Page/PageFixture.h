#pragma once

#include "Tools/SarvexTool/Bench/Output/Page/Page.h"
#include "tests/Tools/SarvexTool/Bench/Core/CoreFixture.h"

#include <sstream>

namespace Bench {

/// Runs and pages as a test writes them down.
class PageFixture {
public:
    /// One line of chain A: its channel, its rate and its power, "" for none.
    struct Line {
        std::string_view channel;
        std::string_view rate;
        std::string_view power;
    };

    /// The first line is line 2, as in a file.
    RunResult RunOf(std::initializer_list<Line> lines) {
        RunResultBuilder builder;
        LineNumber number = 2;
        for (const Line& line : lines)
            builder.Add(core.RowOf(number++,
                                   {{Setting::Band, "5"},
                                    {Setting::Chains, "A"},
                                    {Setting::Channel, line.channel},
                                    {Setting::Rate, line.rate}},
                                   line.power, ""));
        return builder.Take();
    }

    /// The only limit of a table, for whatever is measured.
    static Limits LimitsOf(std::string_view minimum, std::string_view maximum) {
        Limit limit;
        limit.line = 2;
        limit.minimum = Decimal::Parse(minimum);
        limit.maximum = Decimal::Parse(maximum);
        return {{limit}, {}};
    }

    static std::string Written(void (*write)(const Page&, std::ostream&), const Page& page) {
        std::ostringstream out;
        write(page, out);
        return out.str();
    }

    CoreFixture core;
};

} // namespace Bench
