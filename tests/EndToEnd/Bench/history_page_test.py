#!/usr/bin/env python3
"""The pages that SarvexToolBench history writes, in a real browser that has no network.

usage: history_page_test.py PROGRAM
"""
import base64
import os
import pathlib
import subprocess
import sys
import unittest

import browser
import page_case
from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys

PROGRAM = pathlib.Path(sys.argv[1]).resolve() if len(sys.argv) > 1 else None

HEADER = "Band,Chains,Bandwidth,Channel,Rate,Mode,Chain-A Power, Chain B Power\n"
# 2026-03-02 06:00 UTC, a Monday.
FIRST = 1772431200
DAY = 86400


def setUpModule():
    page_case.start_browser()


def result(powers):
    """A result.csv with a line of chain A for each power."""
    return HEADER + "".join(f"5,A,20,{36 + 4 * place},MCS0,SISO,{power:.4f},NA\n"
                            for place, power in enumerate(powers))


class HistoryPageTest(page_case.PageCase):
    # A station's wave from run to run, so that no two runs are the same.
    WAVES = (0, .1, -.1, 0, .2, -.2, .1, -.1, 0, 0)

    def setUp(self):
        super().setUp()
        self.store = self.folder / "history.db"

    def history(self, *arguments, code=0):
        done = subprocess.run([PROGRAM, "history", *arguments, "--store", self.store],
                              capture_output=True, text=True, check=False)
        self.assertEqual((code, ""), (done.returncode, done.stderr))
        return done.stdout

    def keep(self, bench, runs, *arguments):
        """Keeps a run for each list of powers, one a day."""
        folders = []
        for number, powers in enumerate(runs):
            folder = self.folder / f"{len(list(self.folder.iterdir()))}"
            folder.mkdir()
            file = folder / "result.csv"
            file.write_text(result(powers))
            # The files of two benches differ; else they would be one run.
            with file.open("a") as more:
                more.write(f"6,A,20,{sum(map(ord, bench)) % 200 + 1},MCS0,SISO,NA,NA\n")
            os.utime(file, (FIRST + DAY * number,) * 2)
            folders.append(folder)
        self.history("add", *folders, "--bench", bench, "--device", f"DUT {bench}", *arguments)

    def keep_three(self, shift=2):
        """C reads more from its eighth run on."""
        self.keep("A", [[10 + wave, 12 + wave, 15 - wave + number / 1000] for number, wave in enumerate(self.WAVES)])
        self.keep("B", [[10.5 - wave, 12.5 - wave, 15.5 - wave + number / 1000] for number, wave in enumerate(self.WAVES)])
        self.keep("C", [[9.5 + drift, 11.5 + drift, 14.5 + wave / 2 + number / 1000 + drift]
                        for number, wave in enumerate(self.WAVES) for drift in [wave / 2 + (shift if number >= 7 else 0)]])

    def open_trend(self, *words, code=1):
        page = self.folder / "page.html"
        self.history("trend", *words, "--html", page, code=code)
        self.url = page.as_uri()
        self.driver.get(self.url)

    def open_overview(self, *arguments):
        page = self.folder / "page.html"
        self.assertEqual("", self.history("report", "-o", page, *arguments))
        self.url = page.as_uri()
        self.driver.get(self.url)

    def charts(self):
        """All charts, made and drawn."""
        charts = self.all(".plot")
        for chart in charts:
            self.script("arguments[0].scrollIntoView()", chart)
            self.wait_for(lambda chart=chart: chart.find_elements(By.CSS_SELECTOR, "canvas"))
        return charts


class TrendPageTest(HistoryPageTest):
    def test_the_first_words_name_the_station_that_drifts(self):
        self.keep_three()
        self.open_trend()
        self.assertEqual(["Drift C reads 2.00 dB higher since 2026-03-09; 3 of its 10 runs are beyond its control "
                          "limits."], self.texts(".verdict"))
        self.assertEqual([], self.all("#needs-script"))
        self.assertEqual(["Stations3", "Over time3"], self.texts("#contents a"))

    def test_stations_are_a_table_with_their_limits(self):
        self.keep_three()
        self.open_trend()
        self.assertEqual(["C", "A", "B"], self.column("Station", "#stations"))
        self.assertEqual(["10"] * 3, self.column("Runs", "#stations"))
        self.assertEqual(["3", "0", "0"], self.column("Beyond", "#stations"))
        self.assertEqual(["-0.55", "-0.10", "+0.40"], self.column("Offset, dB", "#stations"))
        self.assertEqual(["DUT C", "DUT A", "DUT B"], self.column("Device", "#stations"))
        self.assertNotIn("Out of limits", self.texts("#stations th button"))

    def test_each_station_has_a_chart_in_the_order_of_the_table(self):
        self.keep_three()
        self.open_trend()
        self.assertEqual(["C", "A", "B"], self.texts(".plot h3"))
        self.assertEqual(3, len(self.charts()))
        self.assertIn("within the control limits", self.texts(".plot .about")[1])

    def test_the_keyboard_reaches_every_run(self):
        self.keep_three()
        self.open_trend()
        chart = self.charts()[0]
        drawing = chart.find_element(By.CSS_SELECTOR, ".drawing")
        spoken = lambda: self.script("return arguments[0].querySelector('[aria-live]').textContent", chart)
        self.script("arguments[0].focus()", drawing)
        drawing.send_keys(Keys.ARROW_RIGHT)
        self.assertRegex(spoken(), r"^C, 2026-03-02 06:00 UTC, Median -0\.60 dB of 3 differences, Device DUT C, "
                                   r"Run [0-9a-f]{8}$")
        for _ in range(7):
            drawing.send_keys(Keys.ARROW_RIGHT)
        self.assertIn("2026-03-09 06:00 UTC, Median +1.35 dB of 3 differences, beyond the control limits", spoken())
        drawing.send_keys(Keys.ESCAPE)
        self.assertFalse(chart.find_element(By.CSS_SELECTOR, ".tip").is_displayed())

    def test_a_station_of_the_table_leads_to_its_chart(self):
        self.keep_three()
        self.open_trend()
        self.all("#stations td .text-button")[2].click()
        self.assertEqual("B over time. The arrow keys move along a line and between lines.",
                         self.script("return document.activeElement.getAttribute('aria-label')"))

    def test_one_configuration_and_chain_has_its_powers(self):
        self.keep_three()
        self.open_trend("Channel=36", "Chain=A")
        self.assertEqual("Band 5, Chains A, Bandwidth 20, Channel 36, Rate MCS0, Mode SISO, chain A",
                         self.texts("#powers h3")[0])
        self.assertEqual(["C", "B", "A"] * 10, self.by_time("Station", "#powers"))
        self.assertEqual("2026-03-02 06:00", self.column("Measured (UTC)", "#powers")[0])
        self.assertEqual({"9.5", "10.5", "10"}, set(self.column("Power, dBm", "#powers")[:3]))
        self.charts()

    def by_time(self, title, section):
        """Runs of one moment are in no order; here they are."""
        texts = self.column(title, section)
        return [text for day in range(0, len(texts), 3) for text in sorted(texts[day:day + 3], reverse=True)]

    def test_powers_out_of_limits_are_counted(self):
        self.keep_three(shift=0)
        limits = self.folder / "limits.csv"
        limits.write_text("Band,Chain,Min,Max\n5,*,*,15\n")
        self.open_trend("--limits", limits)
        self.assertEqual(["Out of limits"], self.texts(".verdict strong"))
        out = dict(zip(self.column("Station", "#stations"), self.column("Out of limits", "#stations")))
        self.assertEqual("0", out["C"])
        self.assertEqual("10", out["B"])

    def test_one_bench_and_few_runs_are_told(self):
        self.keep("A", [[10], [10.5]])
        self.open_trend()
        self.assertIn("too few runs for control limits", self.texts(".verdict")[0])
        self.assertEqual(["with one station it cannot be told whether it or what it measures has changed."],
                         self.texts(".says li"))
        self.assertEqual(["\u2013"], self.column("Lower limit, dB", "#stations"))
        self.charts()

    def test_an_empty_store_is_a_page_that_says_so(self):
        self.keep("A", [[10]])
        self.open_trend("--bench", "Z")
        self.assertEqual(["No power no run is kept, or the filter leaves none."], self.texts(".verdict"))
        self.assertFalse(self.one("#stations").is_displayed())

    def test_hostile_names_are_texts(self):
        names = ["<script>alert(1)</script>", "</script><img src=x onerror=alert(1)>", "{{data}}", "\u202eabc"]
        for name in names:
            self.keep(name, [[10 + place % 2 / 100, 11 + place / 1000] for place in range(9)], "--note", "<!--")
        shown = sorted([*names[:3], r"\u{202E}abc"])
        self.open_trend(code=0)
        self.assertEqual(shown, sorted(self.column("Station", "#stations")))
        self.assertEqual(shown, sorted(self.texts(".plot h3")))
        self.charts()
        self.assertEqual([], self.all("img"))
        self.open_overview()
        self.assertEqual(shown, sorted(set(self.column("Bench", "#runs"))))
        self.assertEqual({"<!--"}, set(self.column("Note", "#runs")))

    def test_without_scripts_the_head_can_be_read(self):
        self.keep_three()
        self.driver.execute_cdp_cmd("Emulation.setScriptExecutionDisabled", {"value": True})
        try:
            self.open_trend()
            text = self.one("body").text
        finally:
            self.driver.execute_cdp_cmd("Emulation.setScriptExecutionDisabled", {"value": False})
        self.assertIn("C reads 2.00 dB higher", text)
        self.assertIn("need JavaScript", text)


class OverviewTest(HistoryPageTest):
    def test_the_runs_are_a_table_that_words_filter(self):
        self.keep_three()
        self.open_overview()
        self.assertEqual(30, len(self.column("Bench", "#runs")))
        self.assertEqual(["Stations3", "Runs30", "Over time3"], self.texts("#contents a"))
        self.one("#runs input").send_keys("bench=C 2026-03-09")
        self.assertEqual(["2026-03-09 06:00"], self.column("Measured (UTC)", "#runs"))
        self.assertEqual(["3"], self.column("Measured", "#runs"))
        self.assertEqual(["1"], self.column("Not measured", "#runs"))
        self.assertEqual("1 of 30 runs", self.one("#runs .told").text)

    def test_each_station_has_a_line(self):
        self.keep_three()
        self.open_overview()
        self.assertEqual(["reads 2.00 dB higher since 2026-03-09; 3 of its 10 runs are beyond its control limits",
                          "is steady: offset -0.10 dB, none of its 10 runs is beyond its control limits",
                          "is steady: offset +0.40 dB, none of its 10 runs is beyond its control limits"],
                         self.column("What its runs tell", "#stations"))

    def test_columns_sort(self):
        self.keep_three()
        self.open_overview()
        self.one("#runs th[data-title='Bench'] button").click()
        self.assertEqual(["A"] * 10, self.column("Bench", "#runs")[:10])

    def test_a_filter_leaves_the_runs_that_it_means(self):
        self.keep_three()
        self.open_overview("--bench", "A", "--since", "2026-03-10")
        self.assertEqual(["A"] * 2, self.column("Bench", "#runs"))

    def test_light_and_dark_both_have_enough_contrast(self):
        self.keep_three()
        for scheme in ("light", "dark"):
            browser.prefer(self.driver, scheme)
            self.open_overview()
            self.charts()
            contrasts = self.contrasts()
            self.assertGreater(len(contrasts), 100)
            self.assertEqual([], [found for found in contrasts if found[0] < 4.5], scheme)

    def test_charts_follow_when_the_colours_change(self):
        self.keep_three()
        self.open_overview()
        chart = self.charts()[0]
        before = self.drawn(chart)
        browser.prefer(self.driver, "dark")
        self.wait_for(lambda: self.drawn(chart) != before)

    def test_a_narrow_window_needs_no_scrolling_to_the_side(self):
        self.driver.set_window_size(500, 900)
        self.addCleanup(self.driver.set_window_size, 1400, 1000)
        self.keep_three()
        self.open_overview()
        self.charts()
        self.assertLessEqual(self.script("return document.documentElement.scrollWidth"),
                             self.script("return document.documentElement.clientWidth"))

    def test_everything_that_can_be_used_has_a_name(self):
        self.keep_three()
        self.open_overview()
        self.charts()
        self.assertEqual([], self.nameless())

    def test_it_prints_with_all_runs_and_charts(self):
        self.keep_three()
        self.open_overview()
        self.script("""addEventListener("beforeprint", () => { window.printed = [
            document.querySelectorAll("canvas").length, document.querySelectorAll("#runs tr[data-place]").length]; });""")
        self.assertTrue(base64.b64decode(self.driver.print_page()).startswith(b"%PDF-"))
        self.assertEqual([3, 30], self.script("return window.printed"))


if __name__ == "__main__":
    if PROGRAM is None:
        sys.exit(__doc__)
    browser.leave_the_network()
    unittest.main(argv=[sys.argv[0], *sys.argv[2:]])
