"""Cameras, measuring, the section plane, the picture, keys and help."""
import math
import unittest

from page_test import PageTest, SAMPLE, wait_for
from selenium.webdriver.common.keys import Keys


class Camera(PageTest):
    def setUp(self):
        self.open_sample("table-a30.dat")

    def camera(self):
        return self.scene("camera")

    def test_everything_is_in_the_first_view(self):
        size = self.find("#canvas").size
        for x in (-240, 240):
            for y in (-150, 150):
                for z in (0, 145):
                    pixel = self.scene("pixelOf", [x, y, z])
                    self.assertTrue(0 < pixel[0] < size["width"])
                    self.assertTrue(0 < pixel[1] < size["height"])

    def test_standard_views_look_along_the_axes(self):
        for key, along, right, up in (("1", "y", "x", "z"), ("2", "z", "x", "y"),
                                      ("3", "x", "y", "z")):
            with self.subTest(key):
                self.press(key)
                self.press(*([] if self.camera()["isParallel"] else ["p"]))
                origin = self.scene("pixelOf", [0, 0, 0])
                ends = {name: self.scene("pixelOf", [50 * (name == axis) for axis in "xyz"])
                        for name in "xyz"}
                self.assert_close(ends[along], origin, 1e-3)
                self.assertGreater(ends[right][0], origin[0] + 10)
                self.assertAlmostEqual(ends[right][1], origin[1], places=3)
                self.assertLess(ends[up][1], origin[1] - 10)

    def test_iso_view_shows_three_faces_alike(self):
        self.press("p", "4")
        origin = self.scene("pixelOf", [0, 0, 0])
        lengths = [math.dist(origin, self.scene("pixelOf", [50 * (i == k) for k in range(3)]))
                   for i in range(3)]
        self.assert_close(lengths, [lengths[0]] * 3, 1e-4)

    def test_projections_differ(self):
        self.press("1")
        near, far = [-240, -150, 0], [-240, 150, 0]
        self.assertGreater(abs(self.scene("pixelOf", near)[0] - self.scene("pixelOf", far)[0]), 5)
        self.click("#command-projection")
        self.settle()
        self.assert_close(self.scene("pixelOf", near), self.scene("pixelOf", far), 1e-3)
        self.click("#command-projection")
        self.settle()
        self.assertGreater(abs(self.scene("pixelOf", near)[0] - self.scene("pixelOf", far)[0]), 5)

    def test_drag_orbits_and_keeps_the_target(self):
        before = self.camera()
        self.point_at([300, 300]).click_and_hold().move_by_offset(80, -40).release().perform()
        after = self.camera()
        self.assertLess(after["azimuth"], before["azimuth"] - 0.3)
        self.assertLess(after["elevation"], before["elevation"] - 0.1)
        self.assert_close(after["target"], before["target"])
        self.assertEqual(self.scene("selected"), -1)

    def test_drag_with_shift_pans(self):
        self.settle()
        before = self.scene("pixelOf", [0, 0, 0])
        (self.point_at([300, 300]).key_down(Keys.SHIFT).click_and_hold().move_by_offset(50, 20)
         .release().key_up(Keys.SHIFT).perform())
        self.settle()
        self.assert_close(self.scene("pixelOf", self.camera()["target"]),
                          [size / 2 for size in self.find("#canvas").size.values()][::-1], 0.01)
        after = self.scene("pixelOf", [0, 0, 0])
        self.assertGreater(after[0], before[0] + 30)
        self.assertGreater(after[1], before[1] + 10)

    def test_wheel_zooms_in_both_projections(self):
        for keys in ((), ("p",)):
            self.press(*keys)
            before = self.camera()
            self.js("""document.getElementById('canvas').dispatchEvent(
                new WheelEvent('wheel', {deltaY: -100, cancelable: true}))""")
            self.settle()
            self.assertAlmostEqual(self.camera()["distance"] / before["distance"], 0.95)
            self.assertEqual(self.camera()["target"], before["target"])

    def test_keys_orbit_pan_and_zoom(self):
        before = self.camera()
        self.press(Keys.ARROW_RIGHT, Keys.ARROW_UP)
        after = self.camera()
        self.assertAlmostEqual(after["azimuth"] - before["azimuth"], 0.1)
        self.assertAlmostEqual(after["elevation"] - before["elevation"], 0.1)
        self.press("+")
        self.assertAlmostEqual(self.camera()["distance"], before["distance"] / 1.2)
        self.actions().key_down(Keys.SHIFT).send_keys(Keys.ARROW_LEFT).key_up(Keys.SHIFT).perform()
        self.assertNotEqual(self.camera()["target"], before["target"])

    def test_two_fingers_zoom(self):
        self.set_view(820, 1180, touch=True)
        self.addCleanup(self.set_view, 1280, 800)
        self.open_sample()
        before = self.camera()["distance"]
        box = self.js("const b = document.getElementById('canvas').getBoundingClientRect();"
                      "return [b.left + b.width / 2, b.top + b.height / 2]")

        def touch(kind, gap):
            points = [{"x": box[0] - gap, "y": box[1], "id": 1},
                      {"x": box[0] + gap, "y": box[1], "id": 2}]
            self.browser.execute_cdp_cmd("Input.dispatchTouchEvent", {
                "type": kind, "touchPoints": [] if kind == "touchEnd" else points})

        touch("touchStart", 40)
        for gap in (60, 80):
            touch("touchMove", gap)
        touch("touchEnd", 0)
        self.assertAlmostEqual(self.camera()["distance"] / before, 0.5, delta=0.02)
        self.assertEqual(self.scene("selected"), -1)

    def test_tap_selects(self):
        self.set_view(820, 1180, touch=True)
        self.addCleanup(self.set_view, 1280, 800)
        self.open_sample()
        self.press("2")
        x, y = self.scene("pixelOf", [-140, 20, 145])
        left, top = self.js("const b = document.getElementById('canvas').getBoundingClientRect();"
                            "return [b.left, b.top]")
        for kind, points in (("touchStart", [{"x": left + x, "y": top + y}]), ("touchEnd", [])):
            self.browser.execute_cdp_cmd("Input.dispatchTouchEvent",
                                         {"type": kind, "touchPoints": points})
        wait_for(lambda: self.scene("selected") >= 0, "nothing is selected")
        self.assertEqual(self.text("details-name"), "Raw part")

    def test_right_button_selects_nothing(self):
        self.press("2")
        self.point_at(self.scene("pixelOf", [-140, 20, 145])).context_click().perform()
        self.assertEqual(self.scene("selected"), -1)

    def test_double_click_fits_the_component(self):
        self.press("2")
        pixel = self.scene("pixelOf", [-140, 20, 145])
        self.point_at(pixel).click().click().perform()
        self.settle()
        self.assert_close(self.camera()["target"], [-140, 20, 125])

    def test_fit_shows_the_selected_branch(self):
        self.row("Raw part").click()
        self.press("f")
        self.assert_close(self.camera()["target"], [-140, 20, 125])

    def test_distance_between_two_points(self):
        self.press("2", "p", "m")
        for point in ([-185, -5, 145], [-95, 45, 145]):
            self.point_at(self.scene("pixelOf", point)).click().perform()
        points = self.scene("measured")
        # A click hits a whole pixel, and a pixel shows 0.7 mm.
        self.assertLess(math.dist(points[0], [-185, -5, 145]), 0.7)
        self.assertLess(math.dist(points[1], [-95, 45, 145]), 0.7)
        shown = float(self.text("measure-text").split()[0])
        self.assertAlmostEqual(shown, math.dist(*points), places=5)
        self.press(Keys.ESCAPE)
        self.assertFalse(self.find("#measure-panel").is_displayed())

    def test_distance_by_keys(self):
        self.press("2", "p", "m", Keys.ENTER, Keys.ARROW_RIGHT, "2")
        self.actions().key_down(Keys.SHIFT).send_keys(Keys.ARROW_LEFT).key_up(Keys.SHIFT).perform()
        self.settle()
        self.press(Keys.ENTER)
        points = self.scene("measured")
        self.assert_close(points[0], [0, 0, 30], 1e-4)
        # A key pans by 40 pixels.
        self.assertAlmostEqual(points[1][1], 0, places=3)
        self.assertLess(points[1][0], -10)

    def test_section_cuts_away_one_side(self):
        self.press("2", "p", "x")
        self.assertEqual(self.scene("section")["position"], 0)
        right, left = [200, 0, 30], [-140, 20, 145]
        self.assertIsNone(self.scene("pick", *self.scene("pixelOf", right)))
        self.assertIsNotNone(self.scene("pick", *self.scene("pixelOf", left)))
        self.press("r")
        self.assertIsNotNone(self.scene("pick", *self.scene("pixelOf", right)))
        self.assertIsNone(self.scene("pick", *self.scene("pixelOf", left)))

    def test_clicks_hit_nothing_that_is_cut_away(self):
        self.press("x")
        for side in (1, -1):
            hits = [self.scene("pick", x, y) for x in range(50, 900, 75) for y in range(50, 750, 70)]
            places = [side * hit["point"][0] for hit in hits if hit]
            self.assertGreater(len(places), 10)
            self.assertLessEqual(max(places), 1e-9)
            self.press("r")

    def test_section_takes_a_position(self):
        self.press("s", "z")
        field = self.find("#section-position")
        field.clear()
        field.send_keys("100")
        self.press("2", "p")
        hit = self.scene("pick", *self.scene("pixelOf", [-140, 0, 0]))
        self.assertLess(hit["point"][2], 100)
        self.press("]")
        self.assertAlmostEqual(self.scene("section")["position"], 100 + 0.02 * 145)

    def test_picture_is_saved_as_png(self):
        self.press("k")
        picture = self.work / "bracket.xml.png"
        wait_for(picture.exists, "no picture")
        data = picture.read_bytes()
        self.assertEqual(data[:8], b"\x89PNG\r\n\x1a\n")
        size = self.find("#canvas").size
        self.assertEqual(data[16:24], size["width"].to_bytes(4, "big")
                         + size["height"].to_bytes(4, "big"))

    def test_frames_and_dimension_have_labels(self):
        self.press("b")
        self.assertEqual(sorted(label.text for label in self.find_all(".label")),
                         ["480 × 300 × 145 mm", "Origin", "table-a30"])
        self.press("b", "o")
        self.assertEqual(self.find_all(".label"), [])

    def test_help_lists_the_keys(self):
        self.press("?")
        rows = [row.text for row in self.find_all("#help-keys tr")]
        self.assertIn("m Measure a distance", rows)
        self.assertIn("← Orbit to the left", rows)
        self.actions().send_keys(Keys.ESCAPE).perform()
        self.assertFalse(self.find("#help").is_displayed())

    def test_keys_in_the_search_field_are_text(self):
        self.press("/")
        self.actions().send_keys("x2m").perform()
        self.assertEqual(self.find("#search").get_attribute("value"), "x2m")
        self.assertEqual(self.scene("section")["axis"], -1)

    def test_every_button_has_a_name(self):
        unnamed = self.js("""return [...document.querySelectorAll('button')].filter((button) =>
            !button.getAttribute('aria-label') && button.textContent.trim() === '').length""")
        self.assertEqual(unnamed, 0)


class FramesAlone(PageTest):
    def test_axis_files_are_shown_without_an_assembly(self):
        self.open("table-a30.dat", "left-vise.ref", "bracket-right.mctx")
        self.assertEqual(sorted(label.text for label in self.find_all(".label")),
                         ["Origin", "bracket-right", "left-vise", "table-a30"])
        self.assertFalse(self.find("#message").is_displayed())
        size = self.find("#canvas").size
        for place in ([12.5, -40, 215.75], [-140, 0, 30], [100, 0, 30]):
            pixel = self.scene("pixelOf", place)
            self.assertTrue(0 < pixel[0] < size["width"] and 0 < pixel[1] < size["height"])


class SmallScreen(PageTest):
    def test_tree_opens_over_the_width(self):
        self.set_view(400, 800, touch=True)
        self.addCleanup(self.set_view, 1280, 800)
        self.open_sample()
        self.assertFalse(self.find("#side").is_displayed())
        self.assertEqual(self.find("#panel-button").get_attribute("aria-expanded"), "false")
        self.click("#panel-button")
        self.assertEqual(self.find("#side").size["width"], 400)
        sizes = self.js("""return [...document.querySelectorAll('button')]
            .filter((button) => button.checkVisibility())
            .map((button) => button.getBoundingClientRect())
            .filter((box) => box.width > 0 && (box.height < 34 || box.width < 40)).length""")
        self.assertEqual(sizes, 0)


if __name__ == "__main__":
    unittest.main()
