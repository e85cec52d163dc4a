#!/usr/bin/python3
"""The preview page in a real browser: headless Chromium loads it from
`filterpack serve`, a slider moves and the picture changes, and an edit to a
bundle file shows up by itself.

usage: serve_browser_test.py FILTERPACK BUNDLE_DIR
"""
import re
import shutil
import subprocess
import sys
import tempfile
import time
from pathlib import Path

from selenium import webdriver
from selenium.common.exceptions import StaleElementReferenceException
from selenium.webdriver.chrome.service import Service
from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys
from selenium.webdriver.support.ui import Select, WebDriverWait

TIMEOUT = 120  # seconds; the first render compiles shaders on a busy machine


def start_server(filterpack, bundle):
    server = subprocess.Popen([filterpack, "serve", bundle, "0"], stdout=subprocess.PIPE,
                              stderr=subprocess.DEVNULL, text=True)
    line = server.stdout.readline()
    match = re.search(r"http://127\.0\.0\.1:(\d+)/", line)
    if not match:
        server.kill()
        sys.exit(f"filterpack serve did not start: {line!r}")
    return server, f"http://127.0.0.1:{match.group(1)}/"


def browser():
    options = webdriver.ChromeOptions()
    options.binary_location = "/usr/bin/chromium"
    # No background traffic: on a closed network its refused connections
    # pile up and slow the page on a busy machine.
    for flag in ("--headless=new", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage", "--no-first-run",
                 "--disable-background-networking", "--disable-component-update", "--disable-sync",
                 "--disable-quic"):
        options.add_argument(flag)
    return webdriver.Chrome(service=Service("/usr/bin/chromedriver"), options=options)


def main():
    filterpack, samples = sys.argv[1], sys.argv[2]
    with tempfile.TemporaryDirectory() as scratch:
        bundle = Path(scratch) / "bundle"
        shutil.copytree(samples, bundle)
        server, url = start_server(filterpack, str(bundle))
        driver = browser()
        try:
            # The page rebuilds its controls when a package reloads: an
            # element found a moment ago may be gone, so look again.
            wait = WebDriverWait(driver, TIMEOUT, ignored_exceptions=[StaleElementReferenceException])
            driver.get(url)
            digest = lambda: driver.find_element(By.ID, "picture").get_attribute("data-digest") or ""

            Select(driver.find_element(By.ID, "package")).select_by_value("dreamy")
            wait.until(lambda d: d.find_elements(By.CSS_SELECTOR, '[data-param="strength"] input[type=range]'))
            wait.until(lambda d: digest() != "")
            first = digest()

            slider = driver.find_element(By.CSS_SELECTOR, '[data-param="strength"] input[type=range]')
            slider.send_keys(Keys.END)  # to the slider's maximum
            wait.until(lambda d: digest() not in ("", first))
            print(f"slider moved: picture {first} -> {digest()}")

            # The designer edits the package: the page reloads it without a click.
            package = bundle / "filter/dreamy/filter.xml"
            package.write_text(package.read_text().replace("<float>0.45</float>", "<float>0.05</float>"))
            softness = '[data-param="softness"] input[type=number]'
            wait.until(lambda d: d.find_element(By.CSS_SELECTOR, softness).get_attribute("value") == "0.05")

            # A broken edit shows lint's message with its file and line.
            package.write_text("<model>\n  <filter implement=\"tint\">\n</model>\n")
            wait.until(lambda d: "filter/dreamy/filter.xml:" in d.find_element(By.ID, "lint").text)
            wait.until(lambda d: "does not render" in d.find_element(By.ID, "status").text)
            print("edits followed; lint:", driver.find_element(By.ID, "lint").text.splitlines()[0])
        finally:
            driver.quit()
            server.kill()
            server.wait()
    print("1 passed, 0 failed")


if __name__ == "__main__":
    main()
