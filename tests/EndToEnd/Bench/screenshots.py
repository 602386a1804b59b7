#!/usr/bin/env python3
"""Makes the pictures of docs/report.md: a run of examples/sweep.csv on the simulated daemon, shown
by the browser of the tests.

usage: screenshots.py PROGRAM_DIRECTORY

PROGRAM_DIRECTORY holds SarvexToolBench, vemo and the client without pauses, which the tests build:
build/linux/bin after cmake --build --preset linux.
"""
import pathlib
import shutil
import subprocess
import sys
import tempfile
import time

import browser
from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys

ROOT = pathlib.Path(__file__).resolve().parents[3]
IMAGES = ROOT / "docs" / "images"

LIMITS = """\
Band,Bandwidth,Chain,Min,Max
2.4,*,*,15,20
5,20|40,*,11.5,19
5,80|160,*,9.5,17
6,20..160,*,6,17
6,320,*,5,16
"""


def measure(programs, folder, *options):
    """Runs the example on a simulated device with these options; the results lie in the folder."""
    folder.mkdir()
    client = shutil.copy(programs / "SarvexToolClientWithoutPauses", folder)
    # Under another name no client of a test takes it for a running daemon.
    daemon = shutil.copy(programs / "vemo", folder / "SimulatedDaemon")
    with subprocess.Popen([daemon, "--port", "0", *options], stdout=subprocess.PIPE, text=True) as run:
        port = run.stdout.readline().strip().rpartition(":")[2]
        (folder / "Socket.cfg").write_text(port)
        test = [client, "-wifi-test-by-file", ROOT / "examples" / "sweep.csv"]
        subprocess.run(test, cwd=folder, stdout=subprocess.DEVNULL, check=True)
        run.terminate()


def write_page(programs, folder):
    measure(programs, folder / "baseline", "--noise", "60", "--seed", "7")
    measure(programs, folder / "run", "--noise", "60", "--fault", "124:missing-chain=A",
            "--fault", "424:uncalibrated", "--fault", "640:uncalibrated")
    (folder / "limits.csv").write_text(LIMITS)
    report = [programs / "SarvexToolBench", "report", "run", "--limits", "limits.csv",
              "--baseline", "baseline", "-o", "report.html"]
    subprocess.run(report, cwd=folder, check=True)
    return (folder / "report.html").as_uri()


class Camera:
    def __init__(self, driver):
        self.driver = driver

    def one(self, selector):
        return self.driver.find_element(By.CSS_SELECTOR, selector)

    def show(self, element):
        """Brings an element to the top of the window, and gives plots time to be drawn."""
        self.driver.execute_script("arguments[0].scrollIntoView({block: 'start'})", element)
        time.sleep(1)

    def take(self, name):
        self.driver.save_screenshot(str(IMAGES / f"{name}.png"))

    def take_all(self, url):
        self.driver.get(url)
        self.take("report-head")
        self.show(self.plot("5 GHz, 40 MHz"))
        drawing = self.plot("5 GHz, 40 MHz").find_element(By.CSS_SELECTOR, ".drawing")
        self.driver.execute_script("arguments[0].focus({preventScroll: true})", drawing)
        drawing.send_keys(Keys.ARROW_RIGHT)
        self.take("report-plot")
        self.one("#measurements [data-verdict='not passed']").click()
        self.show(self.one("#measurements"))
        self.take("report-table")
        browser.prefer(self.driver, "dark")
        self.show(self.plot("6 GHz, 20 MHz"))
        self.take("report-dark")

    def plot(self, title):
        return self.driver.find_element(By.XPATH, f"//article[h3='{title}']")


def main(programs):
    IMAGES.mkdir(exist_ok=True)
    driver, profile = browser.start(1200, 860)
    with profile, tempfile.TemporaryDirectory() as folder:
        try:
            Camera(driver).take_all(write_page(programs, pathlib.Path(folder)))
        finally:
            driver.quit()


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    browser.leave_the_network()
    main(pathlib.Path(sys.argv[1]).resolve())
