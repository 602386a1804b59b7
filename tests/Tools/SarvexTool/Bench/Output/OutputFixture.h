#pragma once

#include "Tools/SarvexTool/Bench/Output/Subjects.h"
#include "tests/Tools/SarvexTool/Bench/Core/CoreFixture.h"

#include <memory>
#include <string>

namespace Bench {

/// A run of six lines that has each verdict, a repeated line and a power that is not expected; its
/// judgement; and the comparison with an older run. The expected outputs are written by hand.
class OutputFixture {
public:
    OutputFixture() {
        m_bands.resize(3);
        const char* names[] = {"5", "2.4", "6"};
        Limits limits;
        for (std::size_t index = 0; index < m_bands.size(); ++index) {
            m_bands[index].values = {fixture.Text(names[index])};
            Limit& limit = limits.lines.emplace_back();
            limit.line = static_cast<LineNumber>(index + 2);
            limit.settings[static_cast<std::size_t>(Setting::Band)] = &m_bands[index];
        }
        limits.lines[0].minimum = "12"_dB;
        limits.lines[0].maximum = "14"_dB;
        limits.lines[1].maximum = "14.5"_dB;
        m_pTable = std::make_unique<LimitTable>(std::move(limits));
        run = NewRun();
        judgements = Judge(run, *m_pTable);
        oldRun = OldRun();
        differences = Compare(oldRun, run, "0.5"_dB);
    }

    JudgedRun Judged() const { return {{"run/result.csv", run, device}, "limits.csv", judgements}; }

    ComparedRuns Compared() const {
        return {
            {"old.csv", oldRun, oldDevice}, {"run/result.csv", run, device}, "0.5"_dB, differences};
    }

    /// Lines 2 and 3 of the run were measured on two benches; of the others nothing is told.
    void TellPlaces() {
        run.sources = Sources({{{2, 2}, {"=b\x1B", "DUT", 2}}, {{3, 3}, {"a", std::nullopt, 10}}});
    }

    /// Judges one measurement of band 5 on chain A with another value as its channel.
    Judgements JudgeChannel(std::string_view channel) {
        RunResultBuilder builder;
        builder.Add(fixture.RowOf(
            2, {{Setting::Band, "5"}, {Setting::Chains, "A"}, {Setting::Channel, channel}}, "1",
            ""));
        run = builder.Take();
        judgements = Judge(run, *m_pTable);
        return judgements;
    }

    /// Judges a run of five lines of which one was run, and passed.
    void JudgeEarlyEnd() {
        JudgeChannel("36");
        run.measurements[0].power = "13"_dB;
        run.earlyEnd = EarlyEnd{1, 5};
        judgements = Judge(run, *m_pTable);
    }

    /// Judges one measurement that the daemon refused with these words.
    void JudgeRefusal(std::string_view words) {
        Row row = fixture.RowOf(2, {{Setting::Band, "5"}, {Setting::Chains, "A"}}, "", "");
        row.journalled = {{Outcome::Refused, fixture.Text(words)}, {}, false};
        RunResultBuilder builder;
        builder.Add(row);
        run = builder.Take();
        judgements = Judge(run, *m_pTable);
    }

    CoreFixture fixture;
    RunResult run;
    RunResult oldRun;
    Judgements judgements;
    Differences differences;
    DeviceFacts device{"US", ""};
    DeviceFacts oldDevice{std::nullopt, "result.xml is missing"};

private:
    RunResult NewRun() {
        RunResultBuilder builder;
        const CoreFixture::Cells band5{{Setting::Band, "5"},
                                       {Setting::Chains, "AB"},
                                       {Setting::Bandwidth, "80"},
                                       {Setting::Channel, "36"},
                                       {Setting::Rate, "MCS9"}};
        builder.Add(fixture.RowOf(2, band5, "12.5", "11.75"));
        builder.Add(fixture.RowOf(3,
                                  {{Setting::Band, "2.4"},
                                   {Setting::Chains, "A"},
                                   {Setting::Bandwidth, "20"},
                                   {Setting::Channel, "6"}},
                                  "15", "3"));
        builder.Add(fixture.RowOf(4, {{Setting::Band, "6"}, {Setting::Channel, "500"}}, "", ""));
        builder.Add(fixture.RowOf(5, {{Setting::Channel, "1"}}, "10", ""));
        builder.Add(fixture.RowOf(6, {{Setting::Band, "7"}, {Setting::Chains, "B"}}, "", "1"));
        builder.Add(fixture.RowOf(7, band5, "13", "13"));
        return builder.Take();
    }

    RunResult OldRun() {
        RunResultBuilder builder;
        builder.Add(fixture.RowOf(2,
                                  {{Setting::Band, "2.4"},
                                   {Setting::Chains, "A"},
                                   {Setting::Bandwidth, "20"},
                                   {Setting::Channel, "6"},
                                   {Setting::Rate, "MCS9"}},
                                  "14.25", ""));
        builder.Add(fixture.RowOf(3, {{Setting::Band, "6"}, {Setting::Channel, "500"}}, "9", ""));
        builder.Add(fixture.RowOf(4,
                                  {{Setting::Band, "5"},
                                   {Setting::Chains, "AB"},
                                   {Setting::Bandwidth, "80"},
                                   {Setting::Channel, "36"}},
                                  "12.5", "12.5"));
        return builder.Take();
    }

    std::vector<SettingPattern> m_bands;
    std::unique_ptr<LimitTable> m_pTable;
};

} // namespace Bench
