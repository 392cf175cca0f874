"""What only pixels show, compared coarsely."""
import unittest

from page_test import PageTest, wait_for


def distance(one, other):
    return max(abs(a - b) for a, b in zip(one, other))


class Pictures(PageTest):
    def setUp(self):
        self.open_sample()
        self.press("2", "p", "g")

    def colour_at(self, point):
        return self.scene("pixel", *self.scene("pixelOf", point))[:3]

    def test_something_is_drawn(self):
        background = self.scene("pixel", 3, 3)[:3]
        self.assertEqual(background, [0xee, 0xf1, 0xf5])
        self.assertGreater(distance(self.colour_at([0, 140, 30]), background), 30)

    def test_parts_of_different_files_differ(self):
        self.assertGreater(distance(self.colour_at([-140, 20, 145]), self.colour_at([0, 140, 30])),
                           15)

    def test_highlight_shows(self):
        point = [-140, 20, 145]
        before = self.colour_at(point)
        self.js("viewer.scene.select(viewer.scene.component('Raw part'))")
        red, green, blue = self.colour_at(point)
        self.assertGreater(distance([red, green, blue], before), 40)
        self.assertGreater(blue, red + 60)

    def test_ghost_is_fainter_than_a_solid(self):
        self.press("3")
        # Above the right vise there is only the ghost of its part; the left one is behind it.
        self.js("""viewer.scene.select(viewer.scene.component('Left vise'))""")
        self.press("h")
        point = [100, 20, 143]
        background = self.colour_at(point)
        self.press("d")
        ghost = distance(self.colour_at(point), background)
        self.assertGreater(ghost, 8)
        self.press("h", "d")
        solid = distance(self.colour_at([-140, 20, 143]), background)
        self.assertGreater(solid, 2 * ghost)

    def test_section_shows_the_inside(self):
        self.press("y", "1")
        inside = self.colour_at([0, 0, 15])
        self.press("r")
        self.assertGreater(distance(inside, self.colour_at([0, 0, 15])), 15)

    def test_picture_returns_after_the_hardware_was_lost(self):
        point = [-140, 20, 145]
        before = self.colour_at(point)
        self.js("""const gl = document.getElementById('canvas').getContext('webgl');
            window.hardware = gl.getExtension('WEBGL_lose_context');
            window.hardware.loseContext();""")
        frames = self.scene("timing")["frames"]
        self.js("setTimeout(() => window.hardware.restoreContext(), 0)")
        wait_for(lambda: self.scene("timing")["frames"] > frames, "nothing is drawn again")
        self.assertEqual(self.colour_at(point), before)
        self.browser.get_log("browser")  # remarks about the loss

    def test_hidden_parts_leave_the_picture(self):
        point = [-140, 20, 145]
        before = self.colour_at(point)
        self.js("viewer.scene.select(viewer.scene.component('Workpiece'))")
        self.press("h")
        self.js("viewer.scene.select(-1)")
        self.assertGreater(distance(self.colour_at(point), before), 10)


class Dark(PageTest):
    def test_dark_setting_of_the_system(self):
        self.set_view(1280, 800, dark=True)
        self.addCleanup(self.set_view, 1280, 800)
        self.open_sample()
        self.assertLess(max(self.scene("pixel", 3, 3)[:3]), 60)
        colour = self.js("return getComputedStyle(document.body).color")
        self.assertGreater(int(colour.split("(")[1].split(",")[0]), 200)

    def test_theme_follows_while_the_page_is_open(self):
        self.open_sample()
        self.set_view(1280, 800, dark=True)
        self.addCleanup(self.set_view, 1280, 800)
        wait_for(lambda: max(self.scene("pixel", 3, 3)[:3]) < 60, "the drawing is not dark")


if __name__ == "__main__":
    unittest.main()
