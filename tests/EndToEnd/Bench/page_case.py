"""What the tests of all pages share: the browser, what is shown, and that nothing is asked of the network."""
import json
import pathlib
import tempfile
import unittest

import browser
from selenium.webdriver.common.by import By
from selenium.webdriver.support.ui import WebDriverWait


def start_browser():
    """One browser for all tests of a module: to start it takes longer than most tests."""
    PageCase.driver, profile = browser.start()
    unittest.addModuleCleanup(profile.cleanup)
    unittest.addModuleCleanup(PageCase.driver.quit)


class PageCase(unittest.TestCase):
    """A folder for a test, whose page has the address url."""
    driver = None

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        browser.prefer(self.driver, "light")
        self.addCleanup(self.check_that_nothing_was_asked_or_complained)

    def check_that_nothing_was_asked_or_complained(self):
        self.assertEqual([], [entry["message"] for entry in self.driver.get_log("browser")])
        events = [json.loads(entry["message"])["message"]
                  for entry in self.driver.get_log("performance")]
        asked = [event["params"]["request"]["url"] for event in events
                 if event["method"] == "Network.requestWillBeSent"]
        self.assertEqual([], [url for url in asked if not url.startswith(("file:", "data:"))])
        self.assertEqual([], [url for url in asked if not url.startswith("data:")
                              and url.split("#")[0] != self.url])

    def script(self, text, *arguments):
        return self.driver.execute_script(text, *arguments)

    def all(self, selector):
        return self.driver.find_elements(By.CSS_SELECTOR, selector)

    def one(self, selector):
        found = self.all(selector)
        self.assertEqual(1, len(found), selector)
        return found[0]

    def texts(self, selector):
        return self.script("return [...document.querySelectorAll(arguments[0])]"
                           ".map(element => element.textContent)", selector)

    def wait_for(self, condition):
        return WebDriverWait(self.driver, 20).until(lambda _: condition())

    def column(self, title, section="#measurements"):
        """The texts of a column of a table, as they are shown now."""
        titles = self.texts(section + " th button")
        return self.texts(f"{section} tr[data-place] td:nth-child({titles.index(title) + 1})")

    def plots(self):
        """All plots, made and drawn."""
        plots = self.all(".plot")
        for plot in plots:
            self.script("arguments[0].scrollIntoView()", plot)
            self.wait_for(lambda: plot.find_elements(By.CSS_SELECTOR, ".legend"))
        return plots

    def drawn(self, plot):
        return self.script("return arguments[0].querySelector('canvas').toDataURL()", plot)

    def contrasts(self):
        """Of each visible text with its background: the ratio that WCAG defines."""
        return self.script("""
            const channels = text => text.match(/[\\d.]+/g).map(Number);
            const light = ([r, g, b]) => [r, g, b].map(value => value / 255)
              .map(value => value <= 0.04045 ? value / 12.92 : ((value + 0.055) / 1.055) ** 2.4)
              .reduce((sum, value, index) => sum + value * [0.2126, 0.7152, 0.0722][index], 0);
            const paper = element => {
              const colour = channels(getComputedStyle(element).backgroundColor);
              return colour.length === 4 && colour[3] === 0 ? paper(element.parentElement) : colour;
            };
            const found = [];
            for (const element of document.querySelectorAll("body *")) {
              const hasText = [...element.childNodes].some(node => node.nodeType === 3 && node.data.trim());
              if (!hasText || !element.checkVisibility() || element.matches("script, .unseen"))
                continue;
              const [a, b] = [light(channels(getComputedStyle(element).color)), light(paper(element))];
              found.push([(Math.max(a, b) + 0.05) / (Math.min(a, b) + 0.05), element.className + " " + element.textContent.slice(0, 40)]);
            }
            return found;""")

    def nameless(self):
        """What can be used and has no name."""
        return self.script("""
            return [...document.querySelectorAll("button, input, a, [tabindex='0'], table, section")]
              .filter(element => !(element.getAttribute("aria-label") || element.textContent.trim()))
              .map(element => element.outerHTML.slice(0, 100));""")
