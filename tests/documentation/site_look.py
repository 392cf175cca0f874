#!/usr/bin/python3
"""Tests the reference site in Chromium: its search, its width, and that no page reports an error.

Usage: site_look.py SITE [--pictures DIR]

scripts/docs --look calls it. With --pictures it writes a picture of each page, in light and dark,
for a wide and a narrow window.
"""
import os
import pathlib
import shutil
import sys
import unittest

os.environ.setdefault("TRVFILES_COMMAND", "")
os.environ.setdefault("TRVFILES_SAMPLE", "")
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "viewer"))
sys.dont_write_bytecode = True

SITE = pathlib.Path(sys.argv[1]).resolve()
PICTURES = pathlib.Path(sys.argv[3]) if sys.argv[2:3] == ["--pictures"] else None
PAGES = ["index", "pages", "annotated", "files", "classCQvFilesIO", "structCFileFault",
         "trvfiles_8h", "namespacetrv", "command", "architecture", "file-formats", "changelog",
         "python/index", "python/trvfiles.Component", "python/nameIndex", "python/classIndex"]

try:
    from page_test import PageTest, wait_for
    from selenium.webdriver.common.keys import Keys
except ImportError:
    PageTest = None


class Site(PageTest or object):
    def open_page(self, page):
        self.browser.get("about:blank")
        self.browser.get((SITE / f"{page}.html").as_uri())

    def check_width(self, width):
        for page in PAGES:
            self.open_page(page)
            self.assertLessEqual(self.js("return document.documentElement.scrollWidth"), width,
                                 f"{page} is wider than the window")
            self.check_console()

    def test_pages_fit_a_wide_window(self):
        self.set_view(1280, 900)
        self.check_width(1280)

    def test_pages_fit_a_narrow_window(self):
        self.set_view(400, 800)
        self.check_width(400)

    def test_dark_pages_are_dark(self):
        for page in ("index", "python/index"):
            for dark, color in ((True, "rgb(27, 32, 39)"), (False, "rgb(255, 255, 255)")):
                self.set_view(1280, 900, dark=dark)
                self.open_page(page)
                self.assertEqual(self.js(
                    "return getComputedStyle(document.body).backgroundColor"), color, page)

    def search(self, page, text):
        """Opens a page and types a text in its search field."""
        self.open_page(page)
        self.find("#site-search").send_keys(text)

    def check_search(self, page, text, expected_name, expected_page):
        """The first result of a search, which Enter opens."""
        self.search(page, text)
        self.assertEqual(self.find("#site-results a").text.splitlines()[0], expected_name)
        self.find("#site-search").send_keys(Keys.ENTER)
        wait_for(lambda: expected_page in self.browser.current_url, "the result is not opened")

    def test_search_finds_a_function(self):
        self.set_view(1280, 900)
        self.check_search("index", "readaxis", "readAxis", "classCQvFilesIO.html#")

    def test_search_finds_a_section_in_a_narrow_window(self):
        self.set_view(400, 800)
        self.check_search("pages", "xml screen", "The XML screen",
                          "architecture.html#architecture-the-xml-screen")

    def test_search_from_a_python_page_finds_a_python_name(self):
        self.check_search("python/index", "assembly.placements", "Assembly.placements",
                          "python/trvfiles.Assembly.html#placements")

    def test_search_says_that_nothing_is_found(self):
        self.search("index", "no-such-name")
        self.assertEqual(self.find("#site-results").text, "Nothing found")

    def test_arrow_keys_select_a_result_and_escape_closes_the_list(self):
        self.search("index", "write")
        self.browser.switch_to.active_element.send_keys(Keys.ARROW_DOWN)
        self.browser.switch_to.active_element.send_keys(Keys.ARROW_DOWN)
        links = self.find_all("#site-results a")
        self.assertEqual(self.browser.switch_to.active_element, links[1])
        self.browser.switch_to.active_element.send_keys(Keys.ESCAPE)
        self.assertFalse(self.find("#site-results").is_displayed())


def take_pictures():
    PICTURES.mkdir(parents=True, exist_ok=True)
    Site.setUpClass()
    try:
        site = Site()
        for name, width, dark in (("light", 1280, False), ("dark", 1280, True),
                                  ("light-narrow", 400, False), ("dark-narrow", 400, True)):
            site.set_view(width, 900, dark=dark)
            for page in PAGES:
                site.open_page(page)
                site.browser.save_screenshot(
                    str(PICTURES / f"{page.replace('/', '-')}-{name}.png"))
            site.search("architecture", "read")
            site.browser.save_screenshot(str(PICTURES / f"search-{name}.png"))
    finally:
        Site.doClassCleanups()


if PageTest is None or not shutil.which("chromium") or not shutil.which("chromedriver"):
    print("site: not tested: chromium, chromium-driver or python3-selenium is not installed")
elif PICTURES:
    take_pictures()
else:
    unittest.main(argv=sys.argv[:1])
