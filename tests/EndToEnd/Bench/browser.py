"""Debian's Chromium for tests and screenshots, in a namespace without any network."""
import os
import sys
import tempfile

from selenium import webdriver
from selenium.webdriver.chrome.service import Service

MARK = "SARVEX_WITHOUT_NETWORK"


def leave_the_network():
    """Starts this script again where there is a loopback device and nothing else."""
    if MARK in os.environ:
        return
    options = ["--net"] if os.geteuid() == 0 else ["--map-root-user", "--net"]
    script = 'ip link set lo up && exec "$@"'
    command = ["unshare", *options, "sh", "-c", script, "sh", sys.executable, "-B", *sys.argv]
    os.execvpe(command[0], command, {**os.environ, MARK: "1"})


def start(width=1400, height=1000):
    """The browser, and the folder that it keeps its files in."""
    folder = tempfile.TemporaryDirectory()
    options = webdriver.ChromeOptions()
    # Its own sandbox cannot be made in every container; here it loads pages of the tests only.
    for argument in ("--headless=new", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage",
                     "--force-device-scale-factor=1", f"--window-size={width},{height}",
                     f"--user-data-dir={folder.name}"):
        options.add_argument(argument)
    options.binary_location = "/usr/bin/chromium"
    options.set_capability("goog:loggingPrefs", {"browser": "ALL", "performance": "ALL"})
    driver = webdriver.Chrome(options=options, service=Service("/usr/bin/chromedriver"))
    # The page that it opens by itself is none of ours, and neither are its messages.
    driver.get("about:blank")
    for kind in ("browser", "performance"):
        driver.get_log(kind)
    return driver, folder


def prefer(driver, scheme):
    """Makes the system's colours "light" or "dark"."""
    driver.execute_cdp_cmd(
        "Emulation.setEmulatedMedia",
        {"features": [{"name": "prefers-color-scheme", "value": scheme}]})
