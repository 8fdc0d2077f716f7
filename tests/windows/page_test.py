#!/usr/bin/env python3
"""The simulator's page in a browser, while the DLL works on the same cameras:
page_test.py RUN-WINE SIMULATOR QVXCTL SCREENSHOT"""

import http.client
import os
import pathlib
import signal
import subprocess
import sys
import tempfile
import time

from selenium import webdriver
from selenium.webdriver.common.action_chains import ActionChains
from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys
from selenium.webdriver.support.select import Select

RUN_WINE, SIMULATOR, CLIENT = sys.argv[1:4]
SCREENSHOT = pathlib.Path(sys.argv[4])
LIMIT_S = 60  # on a machine that is busy
PAGE = "127.0.0.1", 8064
ADDRESS = os.environ.get("QVX64_WIFI_CAMERA", "127.0.0.1")  # where the library looks
CAMERAS = {"wifi-0998": "90", "usb-09E4": "0"}  # and their device indexes
FEWEST_FRAMES_PER_S = 5

# How many pictures a second the browser shows, as their noise tells them apart.
FRAMES_PER_S = """
const [seconds, done] = arguments, live = document.getElementById('live');
const canvas = new OffscreenCanvas(64, 48).getContext('2d', {willReadFrequently: true});
const end = performance.now() + 1000 * seconds;
let shown = '', pictures = -1;
(function look() {
  canvas.drawImage(live, 0, 0, 64, 48);
  const now = canvas.getImageData(0, 0, 64, 48).data.join();
  if (now !== shown) ++pictures;
  shown = now;
  performance.now() < end ? requestAnimationFrame(look) : done(pictures / seconds);
})();"""


class Program:
    """Runs under Wine beside the test. It prints into a file: what Wine starts beside a program
    would keep a pipe open."""

    def __init__(self, *command):
        self.file = tempfile.NamedTemporaryFile()
        self.process = subprocess.Popen(
            [RUN_WINE, *command], stdin=subprocess.DEVNULL, stdout=self.file)

    def printed(self):
        return pathlib.Path(self.file.name).read_text()


def await_(what, holds):
    end = time.monotonic() + LIMIT_S
    while not holds():
        assert time.monotonic() < end, f"the page does not show {what}"
        time.sleep(0.05)


def open_browser():
    options = webdriver.ChromeOptions()
    for argument in ("--headless=new", "--no-sandbox", "--disable-gpu", "--window-size=1360,1000"):
        options.add_argument(argument)
    options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
    return webdriver.Chrome(options=options)


class Page:
    def __init__(self, browser):
        self.browser = browser
        self.device = None
        browser.get("http://%s:%d/" % PAGE)
        await_("the event stream", lambda: self.at("link").text == "live")

    def choose(self, camera):
        self.browser.execute_script("location.hash = arguments[0]", camera)
        self.device = CAMERAS[camera]
        await_("the camera", lambda: camera[-4:] in self.browser.title)

    def client(self, *arguments):
        """Works on the chosen camera and succeeds."""
        program = Program(CLIENT, "--device", self.device, *arguments)
        assert program.process.wait(LIMIT_S) == 0, arguments
        return program.printed()

    def at(self, element):
        return self.browser.find_element(By.ID, element)

    def value(self, control):
        return float(self.at("set-" + control).get_attribute("aria-valuetext").lstrip("×"))

    def lamp(self):
        """How brightly the first quadrant is drawn."""
        return self.browser.execute_script(
            "return Number(document.querySelector('.lamp').style.getPropertyValue('--level'))")


def turns_the_ring(page):
    page.at("set-zoom").send_keys(Keys.END)
    await_("the ring's stop", lambda: page.value("zoom") > 190)
    magnification = float(page.client("call", "GetMAG", page.device, "--init"))
    assert abs(magnification - page.value("zoom")) < 0.1, magnification


def presses_the_button(page):
    watch = Program(CLIENT, "--device", page.device, "--json", "watch")
    await_("a magnification to the client", lambda: "magnification" in watch.printed())

    def is_seen():
        ActionChains(page.browser).click_and_hold(page.at("set-button")).release().perform()
        time.sleep(1)
        return '"button"' in watch.printed()
    await_("a press to the client", is_seen)
    watch.process.kill()


def shows_what_the_library_does(page):
    page.client("led", "on")
    await_("the light", lambda: page.lamp() > 0 and page.at("set-segment1").is_selected())
    page.at("set-segment1").send_keys(" ")
    await_("a dark quadrant", lambda: page.lamp() == 0)
    page.client("lens", "pos", "12")
    await_("the lens", lambda: page.value("focus") != 0)


def switches_automatic_exposure(page):
    page.client("ae", "off")
    await_("exposure by hand", lambda: not page.at("set-automatic").is_selected())
    page.at("set-automatic").send_keys(" ")
    assert page.client("call", "GetAutoExposure", page.device, "--init").strip() == "1"


def switches_a_fault_on(page):
    Select(page.at("faultKind")).select_by_value("empty")
    page.at("faultFirst").submit()
    await_("the fault", lambda: "empty" in page.at("faultNow").text.lower())
    found = Program(CLIENT, "--device", page.device, "info").process.wait(LIMIT_S)
    page.at("faultOff").click()
    await_("no fault", lambda: page.at("faultNow").text == "")
    page.client("info")
    assert found != 0


def request(method, path, place=PAGE, body=None, **headers):
    connection = http.client.HTTPConnection(*place, timeout=LIMIT_S)
    connection.request(method, path, body, headers)
    return connection.getresponse().status


def shows_violations(page):
    assert request("GET", "/nonsense", (ADDRESS, 8080)) == 404
    await_("the violation", lambda: any(
        "nonsense" in entry.text for entry in page.at("log").find_elements(By.CLASS_NAME, "wrong")))


def refuses_other_pages(page):
    zoom = page.value("zoom")
    change = "/cameras/wifi-0998", PAGE, '{"zoom": 20}'
    assert request("POST", *change) == 403
    assert request("POST", *change, Origin="http://elsewhere.example") == 403
    assert request("GET", "/cameras/events", Host="elsewhere.example:8064") == 403
    assert page.value("zoom") == zoom


def is_quick_and_fits(page):
    frames_per_s = page.browser.execute_async_script(FRAMES_PER_S, 3)
    print(f"{frames_per_s:.1f} pictures a second")
    page.browser.execute_script("scrollTo(0, 0)")
    SCREENSHOT.parent.mkdir(exist_ok=True)
    page.browser.save_screenshot(str(SCREENSHOT))
    assert frames_per_s >= FEWEST_FRAMES_PER_S
    page.browser.execute_cdp_cmd("Emulation.setDeviceMetricsOverride", {
        "width": 360, "height": 800, "deviceScaleFactor": 1, "mobile": True})
    assert page.browser.execute_script("return document.documentElement.scrollWidth") == 360


CHECKS = {
    "usb-09E4": (turns_the_ring, presses_the_button, shows_what_the_library_does),
    "wifi-0998": (shows_what_the_library_does, switches_automatic_exposure, switches_a_fault_on),
}


def main():
    simulator = Program(SIMULATOR, "--address", ADDRESS, "wifi:0998,zoom=63", "usb:09E4,zoom=63")
    browser = open_browser()
    try:
        await_("itself", lambda: "ready" in simulator.printed())
        page = Page(browser)
        for camera, checks in CHECKS.items():
            page.choose(camera)
            for check in checks:
                start = time.monotonic()
                check(page)
                print(f"{camera} {check.__name__}: {time.monotonic() - start:.1f} s")
        shows_violations(page)
        refuses_other_pages(page)
        is_quick_and_fits(page)
        errors = browser.get_log("browser")
        assert not errors, errors
    finally:
        browser.quit()
        simulator.process.send_signal(signal.SIGINT)
        simulator.process.wait(LIMIT_S)


main()
