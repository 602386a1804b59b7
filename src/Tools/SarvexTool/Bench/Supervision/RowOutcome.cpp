#include "Tools/SarvexTool/Bench/Supervision/RowOutcome.h"

#include "Tools/SarvexTool/Bench/Core/Measurements.h"
#include "Tools/SarvexTool/Bench/Supervision/Echo.h"
#include "Tools/Vemo/VemoClient/DynamicTest/TestFile.h"

#include <string>
#include <utility>

namespace Bench {

namespace {

ChainOutcome OutcomeOf(Chain chain, std::string_view power, const Answer& answer,
                       const OwnSettings& expected) {
    const bool hasPower = power != PowerTest::missingPower;
    if (answer.IsUncalibrated())
        return {Outcome::Uncalibrated, answer.words};
    if (answer.code != 0 || (answer.hasErrors && !hasPower))
        return {Outcome::Refused, answer.words};
    if (!hasPower)
        return {Outcome::ChainNotActive, {}};
    std::string contradiction = ContradictionIn(answer.lines, chain, expected);
    if (!contradiction.empty())
        return {Outcome::OtherConfiguration, std::move(contradiction)};
    return {};
}

} // namespace

RowPowers PowersOf(std::string_view row) {
    row = PowerTest::TrimmedView(row);
    const std::size_t beforeB = row.rfind(',');
    if (beforeB == std::string_view::npos || beforeB == 0)
        return {};
    // 0 where no comma is before A.
    const std::size_t a = row.rfind(',', beforeB - 1) + 1;
    return {row.substr(a, beforeB - a), row.substr(beforeB + 1)};
}

LineOutcome OutcomeOfRow(std::string_view row, const Answer& answer, const OwnSettings& expected) {
    const RowPowers powers = PowersOf(row);
    return {OutcomeOf(Chain::A, powers.a, answer, expected),
            OutcomeOf(Chain::B, powers.b, answer, expected), answer.IsAccepted()};
}

} // namespace Bench
