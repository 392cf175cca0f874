"""A large assembly: everything is drawn, but not everything at once."""
import json
import unittest

from large import write_large
from page_test import PageTest, run_command
from selenium.webdriver.common.keys import Keys

PLACEMENTS = 6000


class Large(PageTest):
    def setUp(self):
        self.open(write_large(self.work, PLACEMENTS, 50), cwd=self.work)

    def test_every_placement_is_drawn_as_listed(self):
        listed = json.loads(run_command("assembly", "list", "--json", "large.xml", cwd=self.work))
        drawn = self.scene("placements")
        self.assertEqual(len(drawn), PLACEMENTS)
        for i in range(0, PLACEMENTS, 499):
            entry = listed["placements"][i]
            self.assert_close(drawn[i]["matrix"], entry["vec1"] + entry["vec2"] + entry["vec3"]
                              + entry["translation"])

    def test_the_still_picture_becomes_complete(self):
        # In the middle of the view from above, the last layer is in front.
        self.press("2")
        self.assertNotIn("simplified", self.text("status"))
        self.assertIn(f"{PLACEMENTS} placements", self.text("status"))
        frames = self.scene("timing")["frames"]
        self.press(Keys.ARROW_LEFT)
        self.assertGreater(self.scene("timing")["frames"], frames)

    def test_the_tree_has_only_the_rows_in_sight(self):
        self.find("#search").send_keys("Part 5999", Keys.ENTER)
        self.assertEqual(self.row("Part 5999").get_attribute("aria-selected"), "true")
        self.assertLess(len(self.find_all("#tree .row")), 60)

    def test_a_branch_is_isolated_and_picked(self):
        self.row("Group 0").click()
        self.press("i", "f")
        self.assertEqual(len(self.scene("placements")), PLACEMENTS // 100)
        target = self.scene("camera")["target"]
        bounds = self.scene("bounds")
        self.assert_close(target, [(a + b) / 2 for a, b in zip(bounds["min"], bounds["max"])])


if __name__ == "__main__":
    unittest.main()
