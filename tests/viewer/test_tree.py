"""The tree beside the drawing, and the panel of the selected component."""
import unittest

from page_test import PageTest, component, assembly, wait_for
from selenium.webdriver.common.keys import Keys


class Tree(PageTest):
    def setUp(self):
        self.open_sample()

    def names(self):
        return [name for name, file in self.row_texts()]

    def search(self, text):
        field = self.find("#search")
        field.clear()
        field.send_keys(text)

    def drawn(self):
        return {one["component"] for one in self.scene("placements")}

    def details(self):
        """The rows of the panel: their texts by heading; those of the assembly replace others."""
        return self.js("""return Object.fromEntries(
            [...document.querySelectorAll('#details-body tr')].map((row) =>
                [row.cells[0].textContent, [...row.cells].slice(1).map((x) => x.textContent)]))""")

    def test_lists_components_with_their_files(self):
        rows = self.row_texts()
        self.assertEqual(rows[:4], [["Bracket OP10", ""], ["Base plate", "base-plate.stl"],
                                    ["Left vise", ""], ["Body", "vise-body.stl"]])
        self.assertIn(["Stop rod", "disabled"], rows)

    def test_click_in_the_tree_selects_in_the_drawing(self):
        before = [one["tint"] for one in self.scene("placements")]
        self.row("Raw part").click()
        self.assertEqual(self.scene("selected"), self.component("Raw part"))
        for one, tint in zip(self.scene("placements"), before):
            is_raw_part = one["component"] == self.component("Raw part")
            self.assertEqual(one["tint"] != tint, is_raw_part)

    def test_click_in_the_drawing_selects_in_the_tree(self):
        self.press("2")
        self.point_at(self.scene("pixelOf", [-140, 20, 145])).click().perform()
        self.assertEqual(self.row("Raw part").get_attribute("aria-selected"), "true")
        self.assertEqual(self.text("details-name"), "Raw part")

    def test_click_beside_everything_selects_nothing(self):
        self.row("Raw part").click()
        self.point_at([5, 400]).click().perform()
        self.assertEqual(self.scene("selected"), -1)
        self.assertFalse(self.find("#details").is_displayed())

    def test_pointer_in_the_drawing_marks_the_row(self):
        self.press("2")
        self.point_at(self.scene("pixelOf", [-140, 20, 145])).perform()
        wait_for(lambda: "hovered" in self.row("Raw part").get_attribute("class"), "no row marked")

    def test_pointer_in_the_tree_marks_the_branch_in_the_drawing(self):
        before = {one["component"]: one["tint"] for one in self.scene("placements")}
        self.actions().move_to_element(self.row("Workpiece")).perform()
        workpiece = self.component("Workpiece")
        changed = {one["component"] for one in self.scene("placements")
                   if one["tint"] != before[one["component"]]}
        self.assertEqual(changed, {workpiece + 1, workpiece + 2, workpiece + 3})

    def test_search_keeps_matches_and_what_is_above_them(self):
        self.search("SAWN")
        self.assertEqual(self.names(), ["Bracket OP10", "Left vise", "Workpiece", "Raw part",
                                        "Right vise", "Workpiece", "Raw part"])
        self.assertEqual(self.text("search-count"), "2 found")
        self.find("#search").send_keys(Keys.ENTER)
        self.assertEqual(self.scene("selected"), self.component("Raw part"))

    def test_search_finds_files(self):
        self.search("stop-rod")
        self.assertEqual(self.names()[-1], "Stop rod")

    def test_search_without_a_match_says_so(self):
        self.search("no such part")
        self.assertTrue(self.find("#tree-empty").is_displayed())

    def test_eye_hides_and_shows_a_branch(self):
        all_drawn = self.drawn()
        vise = self.component("Left vise")
        self.row("Left vise").find_element("class name", "eye").click()
        self.assertEqual(self.drawn(), {c for c in all_drawn if not vise < c < vise + 9})
        self.row("Left vise").find_element("class name", "eye").click()
        self.assertEqual(self.drawn(), all_drawn)

    def test_isolate_leaves_only_the_branch(self):
        self.row("Workpiece").click()
        self.press("i")
        workpiece = self.component("Workpiece")
        self.assertEqual(self.drawn(), {workpiece + 1, workpiece + 2, workpiece + 3})
        self.press("a")
        self.assertEqual(len(self.drawn()), 10)

    def test_disabled_components_are_ghosts_on_demand(self):
        self.assertFalse(any(one["isGhost"] for one in self.scene("placements")))
        self.press("d")
        ghosts = [one for one in self.scene("placements") if one["isGhost"]]
        rod = self.component("Stop rod")
        self.assertEqual([ghost["component"] for ghost in ghosts], [rod, 16, 17, 18])
        self.assertTrue(all(ghost["tint"][3] < 128 for ghost in ghosts))
        self.press("d")
        self.assertEqual(len(self.scene("placements")), 10)

    def test_details_have_both_placements(self):
        self.row("Right vise").click()
        self.assertEqual(self.details()["Position (mm)"], ["100", "0", "30"])
        self.assertEqual(self.details()["Angles x, y, z (°)"], ["0", "0", "30"])
        jaw = self.component("Fixed jaw")
        self.row("Fixed jaw").click()
        self.assertEqual(self.scene("selected"), jaw)
        tables = self.find_all("#details-body table")
        positions = [table.find_elements("tag name", "tr")[0].text for table in tables]
        self.assertEqual(positions, ["Position (mm) 0 50 50", "Position (mm) -140 50 80"])

    def test_copy_puts_the_numbers_on_the_clipboard(self):
        self.row("Raw part").click()
        self.press("c")
        field = self.find("#search")
        field.send_keys(Keys.CONTROL, "v")
        wait_for(lambda: field.get_attribute("value") != "", "nothing pasted")
        self.assertIn("Position (mm): -140 20 105", field.get_attribute("value"))

    def test_arrow_keys_walk_and_fold(self):
        self.row("Bracket OP10").click()
        self.find("#tree").send_keys(Keys.ARROW_DOWN)
        self.assertEqual(self.scene("selected"), self.component("Base plate"))
        self.find("#tree").send_keys(Keys.ARROW_DOWN, Keys.ARROW_LEFT)
        self.assertEqual(self.row("Left vise").get_attribute("aria-expanded"), "false")
        self.assertNotIn("Raw part", self.names()[:4])
        self.find("#tree").send_keys(Keys.ARROW_RIGHT, Keys.ARROW_RIGHT)
        self.assertEqual(self.text("details-name"), "Body")
        self.find("#tree").send_keys(Keys.END)
        self.assertEqual(self.scene("selected"), 18)

    def test_selected_row_is_the_active_one(self):
        self.row("Raw part").click()
        active = self.find("#tree").get_attribute("aria-activedescendant")
        self.assertEqual(self.find(f"#{active}").get_attribute("aria-level"), "4")


class LargeTree(PageTest):
    def test_only_rows_in_sight_are_elements(self):
        parts = [component(f"Part {i}", "missing.stl", (60 * i, 0, 0)) for i in range(3000)]
        self.write("row.xml", assembly(component("root", parts)))
        self.open("row.xml", cwd=self.work)
        self.assertLess(len(self.find_all("#tree .row")), 60)
        self.assertLess(len(self.find_all(".label")), 60)
        self.find("#tree").send_keys(Keys.END)
        self.assertEqual(self.row("Part 2999").get_attribute("aria-selected"), "true")
        self.assertLess(len(self.find_all("#tree .row")), 60)


if __name__ == "__main__":
    unittest.main()
