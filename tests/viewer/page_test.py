"""Tests of the page that `trvfiles view` writes, in Chromium without a window.

The environment names the command and the sample project: TRVFILES_COMMAND, TRVFILES_SAMPLE.
"""
import json
import os
import pathlib
import shutil
import subprocess
import tempfile
import time
import unittest

from selenium import webdriver
from selenium.webdriver.chrome.service import Service
from selenium.webdriver.common.action_chains import ActionChains
from selenium.webdriver.common.by import By

COMMAND = os.environ["TRVFILES_COMMAND"]
SAMPLE = pathlib.Path(os.environ["TRVFILES_SAMPLE"]) / "project"

ARGUMENTS = [
    "--headless=new", "--disable-gpu", "--use-gl=angle", "--use-angle=swiftshader",
    "--enable-unsafe-swiftshader", "--no-first-run", "--disable-background-networking",
    "--disable-component-update", "--disable-sync", "--hide-scrollbars", "--window-size=1280,800",
]

# Chromium's own remark about a renderer without hardware.
EXPECTED_REMARK = "GPU stall due to ReadPixels"


def start_browser(directory):
    """Chromium with its profile and its downloads in a directory."""
    options = webdriver.ChromeOptions()
    options.binary_location = shutil.which("chromium")
    for argument in ARGUMENTS + [f"--user-data-dir={directory}/profile"]:
        options.add_argument(argument)
    if os.name == "posix" and os.geteuid() == 0:
        options.add_argument("--no-sandbox")
    options.add_experimental_option("prefs", {"download.default_directory": f"{directory}"})
    options.set_capability("goog:loggingPrefs", {"browser": "ALL", "performance": "ALL"})
    service = Service(shutil.which("chromedriver"))
    browser = webdriver.Chrome(service=service, options=options)
    browser.set_script_timeout(60)
    return browser


def run_command(*arguments, cwd=None):
    """The standard output of the command, which has to succeed."""
    return subprocess.run([COMMAND, *map(str, arguments)], cwd=cwd, check=True,
                          stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                          encoding="utf-8").stdout


def wait_for(condition, what):
    """Waits until a condition is true, 60 seconds at most."""
    end = time.monotonic() + 60
    while not condition():
        if time.monotonic() > end:
            raise AssertionError(f"timeout: {what}")
        time.sleep(0.02)


class PageTest(unittest.TestCase):
    """A test with a browser, which the tests of a class share."""

    @classmethod
    def setUpClass(cls):
        cls.directory = tempfile.TemporaryDirectory()
        cls.addClassCleanup(cls.directory.cleanup)
        cls.work = pathlib.Path(cls.directory.name)
        cls.browser = start_browser(cls.work)
        cls.addClassCleanup(cls.browser.quit)
        cls.set_view(1280, 800)
        # The start page of the browser has requests of its own.
        cls.browser.get("about:blank")
        cls.browser.get_log("performance")

    def tearDown(self):
        self.check_console()
        self.check_requests()

    @classmethod
    def set_view(cls, width, height, dark=False, touch=False):
        """The size of the page, the theme of the system, and whether there are fingers."""
        devtools = cls.browser.execute_cdp_cmd
        devtools("Emulation.setDeviceMetricsOverride",
                 {"width": width, "height": height, "deviceScaleFactor": 1, "mobile": touch})
        devtools("Emulation.setTouchEmulationEnabled", {"enabled": touch})
        devtools("Emulation.setEmulatedMedia", {"features": [
            {"name": "prefers-color-scheme", "value": "dark" if dark else "light"}]})

    def check_console(self):
        messages = [entry["message"] for entry in self.browser.get_log("browser")]
        self.assertEqual([text for text in messages if EXPECTED_REMARK not in text], [])

    def check_requests(self):
        """No request leaves the page: whatever it loads is in the file."""
        events = [json.loads(entry["message"])["message"]
                  for entry in self.browser.get_log("performance")]
        urls = [event["params"]["request"]["url"] for event in events
                if event["method"] == "Network.requestWillBeSent"]
        self.assertEqual([url for url in urls if not url.startswith(("file:", "data:", "blob:"))],
                         [])

    def open(self, *files, options=(), cwd=SAMPLE):
        """Writes the page of files and opens it."""
        page = self.work / "page.html"
        run_command("view", *options, *files, "-o", page, "--force", cwd=cwd)
        self.browser.get(page.as_uri())
        wait_for(lambda: self.state() in ("ready", "failed"), "the page is not ready")
        self.assertEqual(self.state(), "ready", self.text("message"))

    def open_sample(self, *more):
        self.open("bracket.xml", *more)

    def write(self, name, content):
        """A file in the directory of the test."""
        path = self.work / name
        if isinstance(content, bytes):
            path.write_bytes(content)
        else:
            path.write_text(content, encoding="utf-8")
        return path

    def state(self):
        return self.js("return document.documentElement.dataset.state")

    def js(self, script, *arguments):
        return self.browser.execute_script(script, *arguments)

    def scene(self, call, *arguments):
        """The result of a function of viewer.scene."""
        return self.js(f"return viewer.scene.{call}(...arguments)", *arguments)

    def component(self, name):
        return self.scene("component", name)

    def find(self, selector):
        return self.browser.find_element(By.CSS_SELECTOR, selector)

    def find_all(self, selector):
        return self.browser.find_elements(By.CSS_SELECTOR, selector)

    def text(self, identifier):
        return self.js("return document.getElementById(arguments[0]).textContent", identifier)

    def actions(self):
        """A chain of actions whose movements take no time."""
        return ActionChains(self.browser, duration=0)

    def press(self, *keys):
        """Presses keys, one after the other, while no field has the focus."""
        self.js("document.activeElement.blur()")
        for key in keys:
            self.actions().send_keys(key).perform()
        self.settle()

    def click(self, selector):
        self.find(selector).click()

    def row_texts(self):
        """The rows of the tree in sight: what the columns "name" and "file" show."""
        return self.js("""return [...document.querySelectorAll('#tree .row:not([hidden])')]
            .sort((a, b) => a.dataset.index - b.dataset.index)
            .map((row) => ['.name', '.file'].map((part) => row.querySelector(part).textContent))""")

    def row(self, name):
        """The row of the tree that shows a name."""
        row = self.js("""return [...document.querySelectorAll('#tree .row:not([hidden])')]
            .sort((a, b) => a.dataset.index - b.dataset.index)
            .find((row) => row.querySelector('.name').textContent === arguments[0])""", name)
        self.assertIsNotNone(row, f"no row shows {name!r}")
        return row

    def point_at(self, pixel):
        """A chain of actions that begins at a pixel of the canvas."""
        canvas = self.find("#canvas")
        size = canvas.size
        return self.actions().move_to_element_with_offset(
            canvas, round(pixel[0] - size["width"] / 2), round(pixel[1] - size["height"] / 2))

    def settle(self):
        """Waits until the picture is complete."""
        wait_for(lambda: self.scene("timing")["isStill"], "the picture is not complete")

    def assert_close(self, actual, expected, tolerance=1e-6):
        self.assertEqual(len(actual), len(expected))
        for one, other in zip(actual, expected):
            self.assertLessEqual(abs(one - other), tolerance * max(1, abs(other)),
                                 f"{actual} is not {expected}")


def component(name, content, place=(0, 0, 0), axes=((1, 0, 0), (0, 1, 0), (0, 0, 1)),
              comment="", enabled=1):
    """The XML of a component; the content is its geometry file or a list of components."""
    def escape(text):
        return (text.replace("&", "&amp;").replace("<", "&lt;").replace(">", "&gt;")
                .replace('"', "&quot;"))

    def vector(tag, values):
        return '<%s x="%r" y="%r" z="%r"/>' % (tag, *map(float, values))

    inner = (f'<File name="{escape(content)}"/>' if isinstance(content, str)
             else "".join(content))
    vectors = "".join(vector(f"vec{i + 1}", axis) for i, axis in enumerate(axes))
    return (f'<Component name="{escape(name)}" comment="{escape(comment)}" enabled="{enabled}">'
            f'{vector("Translation", place)}<Orientation>{vectors}</Orientation>'
            f"<Data>{inner}</Data></Component>")


def assembly(root):
    """The XML of an assembly without an overall dimension."""
    return ('<?xml version="1.0" encoding="UTF-8"?>\n<ComponentInfo version="1"><Attributs>'
            f'<Dimension x="0" y="0" z="0"/></Attributs>{root}</ComponentInfo>\n')
