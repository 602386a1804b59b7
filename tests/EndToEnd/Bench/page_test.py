#!/usr/bin/env python3
"""What SarvexToolBench report writes, in a real browser that has no network.

usage: page_test.py PROGRAM
"""
import base64
import json
import pathlib
import re
import resource
import subprocess
import sys
import unittest

import browser
import page_case
from selenium.webdriver.common.action_chains import ActionChains
from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys

PROGRAM = pathlib.Path(sys.argv[1]).resolve() if len(sys.argv) > 1 else None

HEADER = "Band,Chains,Bandwidth,Channel,Rate,Mode,Chain-A Power, Chain B Power\n"
RUN = HEADER + """\
5,A,80,42,MCS0,SISO,15.5,NA
5,A,80,58,MCS0,SISO,15.25,NA
5,A,80,106,MCS0,SISO,9.5,NA
5,A,80,auto,MCS0,SISO,14,NA
5,A,80,42,MCS11,SISO,12,NA
5,A,80,58,MCS11,SISO,NA,NA
5,A,80,106,MCS11,SISO,12.5,NA
2.4,AB,20,6,MCS7,MIMO,19,21
"""
BASELINE = HEADER + """\
5,A,80,42,MCS0,SISO,15.5,NA
5,A,80,58,MCS0,SISO,15,NA
5,A,80,106,MCS0,SISO,11,NA
5,A,80,42,MCS11,SISO,12,NA
5,A,80,58,MCS11,SISO,12,NA
6,A,80,7,MCS11,SISO,12,NA
"""
LIMITS_5 = "Band,Chain,Min,Max\n5,*,10,18\n"
LIMITS = LIMITS_5 + "2.4,*,*,20\n"


def many_measurements(count):
    rows = [HEADER]
    for number in range(count):
        rate, channel = number % 200, 36 + 4 * (number // 200 % 25)
        power = f"{10 + number % 97 / 10}"
        rows.append(f"5,A,{20 << number // 5000},{channel},MCS{rate},SISO,{power},NA\n")
    return "".join(rows)


def setUpModule():
    page_case.start_browser()


def processor_time_of_children():
    usage = resource.getrusage(resource.RUSAGE_CHILDREN)
    return usage.ru_utime + usage.ru_stime


class PageTest(page_case.PageCase):
    def write(self, run, limits=None, baseline=None, name="result.csv"):
        """Has the page written; returns its text."""
        self.result = self.folder / name
        self.result.write_text(run)
        page = self.folder / "page.html"
        command = [PROGRAM, "report", self.result, "-o", page]
        for option, text in (("--limits", limits), ("--baseline", baseline)):
            if text is not None:
                file = self.folder / f"{option[2:]}.csv"
                file.write_text(text)
                command += [option, file]
        before = processor_time_of_children()
        done = subprocess.run(command, capture_output=True, text=True, check=False)
        self.seconds_to_write = processor_time_of_children() - before
        self.assertEqual((0, "", ""), (done.returncode, done.stdout, done.stderr))
        self.url = page.as_uri()
        return page.read_text()

    def open(self, run, limits=None, baseline=None):
        self.write(run, limits, baseline)
        self.driver.get(self.url)
        self.wait_for_frames()

    def wait_for_frames(self):
        """After the first frame the page knows its size, and writes its table anew in the next one."""
        self.driver.execute_async_script(
            "const done = arguments[0]; let frames = 0;"
            "const next = () => ++frames > 3 ? done() : requestAnimationFrame(next); next();")

    def point_at(self, plot, row):
        """Moves the pointer to the point of a line of the file; returns what the plot tells of it."""
        x, y = self.place_of(plot, row)
        self.assertFalse(plot.find_element(By.CSS_SELECTOR, ".tip").is_displayed())
        over = plot.find_element(By.CSS_SELECTOR, ".u-over")
        ActionChains(self.driver, duration=0).move_to_element_with_offset(
            over, x - over.size["width"] // 2, y - over.size["height"] // 2).perform()
        return plot.find_element(By.CSS_SELECTOR, ".tip").text

    def place_of(self, plot, row):
        """Where a point is, which the keyboard finds."""
        drawing = plot.find_element(By.CSS_SELECTOR, ".drawing")
        self.script("arguments[0].scrollIntoView({block: 'center'}); arguments[0].focus()", drawing)
        for _ in range(20):
            drawing.send_keys(Keys.ARROW_RIGHT)
            if f"Line {row}\n" in plot.find_element(By.CSS_SELECTOR, ".tip").text:
                dot = plot.find_element(By.CSS_SELECTOR, ".dot")
                place = self.script("return [arguments[0].style.left, arguments[0].style.top]", dot)
                self.script("arguments[0].blur()", drawing)
                return [round(float(length.removesuffix("px"))) for length in place]
        return self.fail(f"the plot has no point of line {row}")


class ContentTest(PageTest):
    def test_the_head_tells_the_verdict_and_the_counts(self):
        self.open(RUN, LIMITS)
        self.assertIn("result.csv", self.one("h1").text)
        self.assertIn("result.csv", self.driver.title)
        self.assertEqual(
            ["Not passed 3 of 9 measurements did not pass: 1 too low, 1 too high, 1 not measured."],
            self.texts(".verdict"))
        self.assertEqual(["9 measurements", "6 pass", "1 too low", "1 too high", "1 not measured",
                          "0 no limit"], self.texts(".counts a"))
        self.assertEqual([], self.all("#needs-script"))

    def test_what_is_outside_comes_with_the_farthest_first(self):
        self.open(RUN, LIMITS)
        self.assertEqual(["9", "4"], self.column("Line", "#outside"))
        self.assertEqual(["-1", "-0.5"], self.column("Margin, dB", "#outside"))

    def test_what_is_not_measured_is_told_with_its_reason_and_lines(self):
        self.open(RUN, LIMITS)
        self.assertEqual(["no power was reported"], self.column("Why", "#missing"))
        self.assertEqual(["7"], self.column("Lines of the file", "#missing"))

    def test_a_refused_line_makes_later_ones_uncertain(self):
        self.open(HEADER + "5,A,80,42,MCS0,SISO,NA,NA\n-,-,-,-,MCS1,-,12,NA\n")
        self.assertEqual(["Band is uncertain since line 2", "no power was reported"],
                         sorted(self.column("Why", "#missing")))

    def test_there_is_a_plot_for_each_band_and_bandwidth(self):
        self.open(RUN, LIMITS)
        self.assertEqual(["2.4 GHz, 20 MHz", "5 GHz, 80 MHz"], self.texts(".plot h3"))
        self.assertEqual(
            ["2 measurements in 2 lines.",
             "6 measurements in 2 lines; 1 without a power; 1 measurement is in the table only: "
             "the channel is no number."], self.texts(".plot h3 + .about"))

    def test_every_measurement_is_in_the_table(self):
        self.open(RUN, LIMITS)
        self.assertEqual("2 3 4 5 6 7 8 9 9".split(), self.column("Line"))
        self.assertEqual("15.5 15.25 9.5 14 12 \u2013 12.5 19 21".split(), self.column("Power, dBm"))
        self.assertEqual("10 10 10 10 10 10 10".split() + ["", ""], self.column("Min, dBm"))
        self.assertEqual("pass,pass,too low,pass,pass,not measured,pass,pass,too high".split(","),
                         [text.lstrip("\u2713\u25BC\u25B2\u2013") for text in self.column("Verdict")])

    def test_without_limits_nothing_is_judged(self):
        self.open(RUN)
        self.assertEqual(["Not judged No limits were given; 8 of 9 measurements have a power."],
                         self.texts(".verdict"))
        self.assertNotIn("Margin, dB", self.texts("#measurements th button"))
        self.assertFalse(self.one("#outside").is_displayed())

    def test_a_baseline_is_held_against_the_run(self):
        self.open(RUN, baseline=BASELINE)
        self.assertEqual(["0", "+0.25", "-1.5"], self.column("Change, dB")[:3])
        table = "#differences [aria-label='Differences, scrollable']"
        self.assertEqual(
            [("changed", "4", "-1.5"), ("measured in the baseline only", "6", ""),
             ("in this run only", "", ""), ("in the baseline only", "7", ""),
             ("in this run only", "", ""), ("in this run only", "", ""), ("in this run only", "", "")],
            list(zip(self.column("What", table), self.column("Baseline line", table),
                     self.column("Change, dB", table))))
        shifts = "#differences [aria-label='Mean change by band and rate, scrollable']"
        self.assertEqual([("MCS0", "3", "-0.417"), ("MCS11", "1", "0")],
                         list(zip(self.column("Rate", shifts), self.column("Pairs", shifts),
                                  self.column("Mean change, dB", shifts))))
        self.assertIn("baseline", self.plots()[1].text)

    def test_one_point_alone_is_drawn(self):
        self.open(HEADER + "5,A,80,42,MCS0,SISO,15.5,NA\n")
        [plot] = self.plots()
        self.assertIn("Channel 42: 15.5 dBm", self.point_at(plot, 2))

    def test_a_plot_without_any_power_says_so(self):
        self.open(HEADER + "5,A,80,42,MCS0,SISO,NA,NA\n")
        self.assertEqual(["1 measurement in 1 line; none has a power."], self.texts(".plot .about"))

    def test_without_scripts_the_head_can_be_read(self):
        self.write(RUN, LIMITS)
        self.driver.execute_cdp_cmd("Emulation.setScriptExecutionDisabled", {"value": True})
        try:
            self.driver.get(self.url)
            text = self.one("body").text
        finally:
            self.driver.execute_cdp_cmd("Emulation.setScriptExecutionDisabled", {"value": False})
        self.assertIn("3 of 9 measurements did not pass", text)
        self.assertIn("9\nmeasurements", text)
        self.assertIn("need JavaScript", text)


class PlacesTest(PageTest):
    """A run whose lines were measured on several benches."""

    SOURCES = [{"firstLine": 2, "lastLine": 4, "bench": "bench-2", "device": "DUT-1", "attempt": 1},
               {"firstLine": 5, "lastLine": 6, "bench": "<b>bench</b>", "attempt": 2},
               {"firstLine": 7, "lastLine": 8, "bench": "bench-10", "device": "DUT-1", "attempt": 1}]

    def open_merged(self, limits=LIMITS, baseline=None, sources=None):
        rows, end, lines = RUN.split("\n")[1:-1], len(HEADER), []
        for number, row in enumerate(rows, 2):
            end += len(row) + 1
            chain = {"outcome": "measured"}
            lines.append({"line": number, "accepted": True, "a": chain, "b": chain, "csvEnd": end,
                          "started": "", "seconds": 0, "explicit": True})
        (self.folder / "journal.jsonl").write_text("".join(json.dumps(line) + "\n" for line in lines))
        (self.folder / "run.json").write_text(
            json.dumps({"linesTotal": len(rows), "sources": sources or self.SOURCES}))
        self.open(RUN, limits, baseline)

    def test_there_is_a_table_by_bench(self):
        self.open_merged()
        self.assertEqual(["Benches"], self.texts("#places-title"))
        self.assertEqual(["unknown", "<b>bench</b>", "bench-2", "bench-10"], self.column("Bench", "#places"))
        self.assertEqual(["2", "2", "3", "2"], self.column("Measurements", "#places"))
        self.assertEqual(["1", "2", "2", "1"], self.column("Pass", "#places"))
        self.assertEqual(["0", "0", "1", "0"], self.column("Too low", "#places"))
        self.assertEqual(["0", "0", "0", "1"], self.column("Not measured", "#places"))
        self.assertEqual(["-1", "+2", "-0.5", "+2.5"], self.column("Worst margin, dB", "#places"))
        self.assertEqual([], self.all("#places b"))

    def test_a_measurement_names_its_bench_device_and_attempt(self):
        self.open_merged()
        self.assertEqual(["bench-2"] * 3 + ["<b>bench</b>"] * 2 + ["bench-10"] * 2 + ["unknown"] * 2,
                         self.column("Bench"))
        self.assertEqual(["DUT-1"] * 3 + ["unknown"] * 2 + ["DUT-1"] * 2 + ["unknown"] * 2,
                         self.column("Device"))
        self.assertEqual(["1"] * 3 + ["2"] * 2 + ["1"] * 2 + ["unknown"] * 2, self.column("Attempt"))
        self.assertIn("Bench bench-2, Device DUT-1, Attempt 1", self.point_at(self.plots()[1], 4))

    def test_measurements_are_filtered_by_bench(self):
        self.open_merged()
        chooser = self.one("#measurements select")
        self.assertEqual(["All benches", "unknown", "<b>bench</b>", "bench-2", "bench-10"],
                         self.texts("#measurements option"))
        for option, lines in ((1, "9 9"), (3, "2 3 4"), (0, "2 3 4 5 6 7 8 9 9")):
            chooser.find_elements(By.TAG_NAME, "option")[option].click()
            self.assertEqual(lines.split(), self.column("Line"))
        self.one("#measurements input").send_keys("bench=bench-10 58")
        self.assertEqual(["7"], self.column("Line"))

    def test_a_bench_of_the_table_leads_to_its_measurements(self):
        self.open_merged()
        self.one("#measurements [data-verdict='too high']").click()
        [*_, last] = self.all("#places td .text-button")
        self.script("arguments[0].scrollIntoView({block: 'center'})", last)
        last.click()
        self.assertEqual("7 8".split(), self.column("Line"))
        # A point whose row is hidden takes the filter away.
        self.point_at(self.plots()[1], 4)
        ActionChains(self.driver).click().perform()
        self.assertEqual(["4"], self.texts("tr.current td:first-child"))
        self.assertEqual(9, len(self.column("Line")))

    def test_a_baseline_gives_each_bench_its_mean_change(self):
        self.open_merged(baseline=BASELINE)
        self.assertEqual(["", "0", "-0.417", ""], self.column("Mean change, dB", "#places"))

    def test_attempts_take_the_place_of_benches_that_are_not_told(self):
        self.open_merged(sources=[{"firstLine": 2, "lastLine": 8, "attempt": 3}])
        self.assertEqual(["Attempts"], self.texts("#places-title"))
        self.assertEqual(["unknown", "3"], self.column("Attempt", "#places"))

    def test_a_run_that_tells_no_bench_has_no_such_table(self):
        self.open(RUN, LIMITS)
        self.assertFalse(self.one("#places").is_displayed())
        self.assertEqual([], self.all("#measurements select"))
        self.assertNotIn("Bench", self.texts("#measurements th button"))


class HostileTest(PageTest):
    CELLS = ["<script>alert(1)</script>", "</script><img src=x onerror=alert(1)>", "<!--", "-->",
             "a'b&amp;c", "{{data}}", "__proto__", "constructor", "%3Cscript%3E", "javascript:alert(1)"]
    VISIBLE = {"\u2028": r"\u{2028}", "\u202eabc": r"\u{202E}abc", "\u200f": r"\u{200F}"}

    def test_every_cell_is_shown_as_its_text(self):
        shown = [*self.CELLS, *self.VISIBLE.values()]
        rows = [f"5,A,80,36,{cell},{cell},12,NA\n" for cell in [*self.CELLS, *self.VISIBLE]]
        self.open(HEADER + "".join(rows))
        self.assertEqual(shown, self.column("Rate"))
        self.assertEqual(shown, self.column("Mode"))
        self.plots()
        self.assertEqual(sorted(f"{text} \u00b7 {text} \u00b7 chain A" for text in shown),
                         sorted(self.texts(".key .name")))
        self.assertEqual([], self.all("img"))

    def test_bands_and_chains_are_shown_as_their_texts(self):
        self.open(HEADER + "<b>5,</script>,<i>,36,1,1,12,NA\n")
        self.assertEqual(["Band <b>5, bandwidth <i>"], self.texts(".plot h3"))
        self.assertEqual(["</script>"], self.column("Chains"))
        self.assertEqual([], self.all("article b, article i"))

    def test_a_file_name_is_shown_as_its_text(self):
        name = "<img src=x onerror=alert(1)>&amp;\u202e" + "long" * 30 + ".csv"
        self.write(RUN, name=name)
        self.driver.get(self.url)
        self.assertIn(name.replace("\u202e", r"\u{202E}"), self.one("h1").text)
        self.assertLessEqual(self.script("return document.documentElement.scrollWidth"),
                             self.script("return document.documentElement.clientWidth"))


class TableTest(PageTest):
    def table_state(self):
        return self.one("#measurements .told").text

    def test_words_of_the_filter_must_all_be_in_a_row(self):
        self.open(RUN, LIMITS)
        self.one("#measurements input").send_keys("mcs11 58")
        self.assertEqual(["7"], self.column("Line"))
        self.assertEqual("1 of 9 measurements", self.table_state())

    def test_a_column_can_be_asked_for_its_exact_text(self):
        self.open(RUN, LIMITS)
        self.one("#measurements input").send_keys("channel=6")
        self.assertEqual(["9", "9"], self.column("Line"))

    def test_rows_can_be_chosen_by_verdict(self):
        self.open(RUN, LIMITS)
        self.one("#measurements [data-verdict='not passed']").click()
        self.assertEqual(["4", "7", "9"], self.column("Line"))
        self.one("#measurements [data-verdict='too high']").click()
        self.assertEqual(["9"], self.column("Line"))
        self.assertEqual(["true"], [button.get_attribute("aria-pressed") for button in
                                    self.all("#measurements [data-verdict='too high']")])

    def test_a_count_of_the_head_leads_to_its_rows(self):
        self.open(RUN, LIMITS)
        self.one(".counts [data-verdict='too low']").click()
        self.assertEqual(["4"], self.column("Line"))

    def test_a_click_on_a_title_sorts_up_and_down_with_missing_ones_last(self):
        self.open(RUN, LIMITS)
        power = self.one("#measurements th[data-title='Power, dBm'] button")
        power.click()
        self.assertEqual("9.5 12 12.5 14 15.25 15.5 19 21 \u2013".split(), self.column("Power, dBm"))
        self.assertEqual(["ascending"], [head.get_attribute("aria-sort")
                                         for head in self.all("#measurements th[aria-sort]")])
        power.click()
        self.assertEqual("21 19 15.5 15.25 14 12.5 12 9.5 \u2013".split(), self.column("Power, dBm"))
        self.assertEqual(["descending"], [head.get_attribute("aria-sort")
                                          for head in self.all("#measurements th[aria-sort]")])

    def test_texts_with_numbers_sort_as_people_count(self):
        self.open(RUN)
        self.one("#measurements th[data-title='Rate'] button").click()
        self.assertEqual(["MCS0"] * 4 + ["MCS7"] * 2 + ["MCS11"] * 3, self.column("Rate"))

    def test_a_power_leads_to_its_point(self):
        self.open(RUN, LIMITS)
        self.all("#measurements td .text-button")[2].click()
        self.assertIn("Channel 106: 9.5 dBm", self.wait_for(lambda: self.one(".tip:not([hidden])").text))


class PlotTest(PageTest):
    def test_a_click_on_a_legend_entry_takes_its_line_away_and_brings_it_back(self):
        self.open(RUN, LIMITS)
        plot = self.plots()[1]
        before = self.drawn(plot)
        key = plot.find_element(By.CSS_SELECTOR, ".key")
        told = plot.find_element(By.CSS_SELECTOR, ".legend .told")
        self.assertEqual(("true", "2 of 2 lines"), (key.get_attribute("aria-pressed"), told.text))
        key.click()
        self.assertEqual(("false", "1 of 2 lines"), (key.get_attribute("aria-pressed"), told.text))
        self.assertNotEqual(before, self.drawn(plot))
        key.click()
        ActionChains(self.driver).move_to_element(self.one("#plots-title")).perform()
        self.wait_for(lambda: self.drawn(plot) == before)

    def test_none_empties_the_plot_and_all_fills_it(self):
        self.open(RUN, LIMITS)
        plot = self.plots()[1]
        buttons = {button.text: button for button in plot.find_elements(By.CSS_SELECTOR, ".legend .bar button")}
        buttons["None"].click()
        self.assertIn("Choose a line to see it here.", plot.text)
        buttons["Outside limits"].click()
        self.assertEqual(["true", "false"], [key.get_attribute("aria-pressed") for key in
                                             plot.find_elements(By.CSS_SELECTOR, ".key")])
        buttons["All"].click()
        self.assertIn("2 of 2 lines", plot.text)

    def test_pointing_tells_the_measurement_and_a_click_goes_to_its_row(self):
        self.open(RUN, LIMITS)
        text = self.point_at(self.plots()[1], 4)
        self.assertEqual(["MCS0 \u00b7 SISO \u00b7 chain A", "Channel 106: 9.5 dBm",
                          "Limits 10 to 18 dBm, margin -0.5 dB", "Verdict: too low", "Line 4",
                          "Click: its row in the table"], text.splitlines())
        ActionChains(self.driver).click().perform()
        self.assertEqual(["4"], self.texts("tr.current td:first-child"))
        self.assertTrue(self.script("return document.activeElement.matches('tr.current')"))

    def test_the_row_of_a_point_is_found_though_a_filter_hides_it(self):
        self.open(RUN, LIMITS)
        self.one("#measurements [data-verdict='too high']").click()
        self.point_at(self.plots()[1], 4)
        ActionChains(self.driver).click().perform()
        self.assertEqual(["4"], self.texts("tr.current td:first-child"))

    def test_the_keyboard_reaches_every_point_and_its_row(self):
        self.open(RUN, LIMITS)
        plot = self.plots()[1]
        drawing = plot.find_element(By.CSS_SELECTOR, ".drawing")
        spoken = lambda: self.script("return arguments[0].querySelector('[aria-live]').textContent", plot)
        self.script("arguments[0].focus()", drawing)
        drawing.send_keys(Keys.ARROW_RIGHT)
        self.assertIn("MCS0 \u00b7 SISO \u00b7 chain A, Channel 42: 15.5 dBm", spoken())
        drawing.send_keys(Keys.ARROW_RIGHT)
        self.assertIn("Channel 58: 15.25 dBm", spoken())
        drawing.send_keys(Keys.ARROW_DOWN)
        self.assertIn("MCS11", spoken())
        drawing.send_keys(Keys.ENTER)
        row = spoken().rpartition("Line ")[2]
        self.assertEqual([row], self.texts("tr.current td:first-child"))

    def test_the_tabulator_reaches_legend_filter_and_table(self):
        self.open(RUN, LIMITS)
        self.plots()
        reached = set()
        for _ in range(120):
            ActionChains(self.driver).send_keys(Keys.TAB).perform()
            reached.add(self.script("return document.activeElement.className + ' ' + "
                                    "document.activeElement.tagName"))
        for wanted in ("skip A", "key BUTTON", "drawing DIV", "scroller DIV", " INPUT", " BUTTON"):
            self.assertIn(wanted, reached)

    def test_hundreds_of_lines_are_found_by_words(self):
        self.open(many_measurements(1000), LIMITS_5)
        [plot] = self.plots()
        self.assertIn("8 of 200 lines", plot.text)
        plot.find_element(By.CSS_SELECTOR, ".legend input").send_keys("MCS19")
        shown = [key.text for key in plot.find_elements(By.CSS_SELECTOR, ".key") if key.is_displayed()]
        self.assertEqual(11, len(shown))


class LooksTest(PageTest):
    def colours(self):
        return self.script("const style = getComputedStyle(document.body);"
                           "return [style.backgroundColor, style.color]")

    def test_light_and_dark_both_have_enough_contrast(self):
        seen = []
        for scheme in ("light", "dark"):
            browser.prefer(self.driver, scheme)
            self.open(RUN, LIMITS, BASELINE)
            self.plots()
            seen.append(self.colours())
            contrasts = self.contrasts()
            self.assertGreater(len(contrasts), 100)
            self.assertEqual([], [found for found in contrasts if found[0] < 4.5], scheme)
        self.assertNotEqual(seen[0], seen[1])

    def test_plots_follow_when_the_colours_change(self):
        self.open(RUN, LIMITS)
        plot = self.plots()[1]
        before = self.drawn(plot)
        browser.prefer(self.driver, "dark")
        self.wait_for(lambda: self.drawn(plot) != before)

    def test_a_narrow_window_needs_no_scrolling_to_the_side(self):
        self.driver.set_window_size(500, 900)
        self.addCleanup(self.driver.set_window_size, 1400, 1000)
        self.open(RUN, LIMITS, BASELINE)
        self.plots()
        self.assertLessEqual(self.script("return document.documentElement.scrollWidth"),
                             self.script("return document.documentElement.clientWidth"))

    def test_everything_that_can_be_used_has_a_name(self):
        self.open(RUN, LIMITS, BASELINE)
        self.plots()
        self.assertEqual([], self.nameless())

    def test_it_prints_in_light_colours_with_all_rows(self):
        browser.prefer(self.driver, "dark")
        self.open(RUN, LIMITS, BASELINE)
        self.script("""addEventListener("beforeprint", () => { window.printed = [
            getComputedStyle(document.body).backgroundColor, document.querySelectorAll("canvas").length,
            document.querySelectorAll("#measurements tr[data-place]").length]; });""")
        pdf = base64.b64decode(self.driver.print_page())
        self.assertTrue(pdf.startswith(b"%PDF-"))
        self.assertGreaterEqual(len(re.findall(rb"/Type\s*/Page\b", pdf)), 2)
        self.assertEqual(["rgb(246, 247, 249)", 2, 9], self.script("return window.printed"))
        self.assertFalse(self.script("return 'printing' in document.documentElement.dataset"))

    def test_a_table_that_is_too_long_for_paper_says_so(self):
        self.open(many_measurements(1500))
        self.script("dispatchEvent(new Event('beforeprint'))")
        self.assertIn("1,500 rows: too many to print.", self.texts("#measurements .print-note")[0])
        self.script("dispatchEvent(new Event('afterprint'))")
        self.assertEqual([""], self.texts("#measurements .print-note"))


class SpeedTest(PageTest):
    """Processor time is measured, which does not depend on what else the machine does."""

    def seconds_of(self, action):
        self.driver.execute_cdp_cmd("Performance.enable", {"timeDomain": "threadTicks"})
        before = self.task_time()
        action()
        return self.task_time() - before

    def task_time(self):
        metrics = self.driver.execute_cdp_cmd("Performance.getMetrics", {})["metrics"]
        return next(metric["value"] for metric in metrics if metric["name"] == "TaskDuration")

    def test_twenty_thousand_measurements_open_and_filter_without_a_visible_wait(self):
        self.write(many_measurements(20000), LIMITS_5)
        self.driver.get("about:blank")
        opening = self.seconds_of(lambda: self.driver.get(self.url))
        self.assertEqual(["20000 measurements"], self.texts(".counts [data-verdict='all']"))
        self.assertLess(len(self.all("#measurements tr")), 100)
        filtering = self.seconds_of(lambda: self.script(
            "const input = document.querySelector('#measurements input'); input.value = 'mcs199 channel=36';"
            "input.dispatchEvent(new Event('input'))"))
        self.assertEqual("4 of 20,000 measurements", self.one("#measurements .told").text)
        sorting = self.seconds_of(lambda: self.script(
            "document.querySelector('#measurements input').value = '';"
            "document.querySelector('#measurements input').dispatchEvent(new Event('input'));"
            "document.querySelector('#measurements th:nth-child(8) button').click()"))
        drawing = self.seconds_of(self.plots)
        print(f"20,000 measurements: written in {self.seconds_to_write:.2f} s, opened in {opening:.2f} s, filtered in {filtering:.3f} s, "
              f"sorted in {sorting:.3f} s, all plots drawn in {drawing:.2f} s", file=sys.stderr)
        self.assertLess(self.seconds_to_write, 1)
        self.assertLess(opening, 2)
        self.assertLess(filtering, 0.3)
        self.assertLess(sorting, 0.5)

    def test_the_last_row_can_be_reached(self):
        self.open(many_measurements(20000))
        self.script("const scroller = document.querySelector('#measurements .scroller');"
                    "scroller.scrollTop = scroller.scrollHeight")
        self.wait_for(lambda: self.column("Line")[-1] == "20001")


if __name__ == "__main__":
    if PROGRAM is None:
        sys.exit(__doc__)
    browser.leave_the_network()
    unittest.main(argv=[sys.argv[0], *sys.argv[2:]])
