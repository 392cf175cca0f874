"""Two assemblies: what each placement has become, and stepping through the differences."""
import unittest

from page_test import PageTest


class Difference(PageTest):
    def setUp(self):
        self.open("bracket.xml", "bracket-rev-b.xml", options=["--diff"])

    def names(self, *roles):
        """The names of the components that are drawn in some roles."""
        return sorted(self.scene("name", one["component"]) for one in self.scene("placements")
                      if one["role"] in roles)

    def entry(self, text):
        rows = [row for row in self.find_all("#differences li") if text in row.text]
        self.assertEqual(len(rows), 1)
        return rows[0]

    def test_each_placement_has_its_role(self):
        self.assertEqual(self.names("same"), ["Base plate", "Body", "Fixed jaw", "Front parallel",
                                              "Raw part", "Rear parallel"])
        self.assertEqual(self.names("changed"), ["Moving jaw"])
        self.assertEqual(self.names("moved"), ["Body", "Fixed jaw", "Moving jaw"])
        self.assertEqual(self.names("old"), ["Body", "Fixed jaw", "Moving jaw"])
        self.assertEqual(self.names("added"), ["Front parallel", "Raw part", "Rear parallel",
                                               "Stop rod"])
        # The stop rod of the first assembly was disabled, so it is a ghost on demand.
        self.assertEqual(self.names("removed"), [])
        self.press("d")
        self.assertEqual(self.names("removed"), ["Stop rod"])

    def test_roles_have_the_colours_of_the_legend(self):
        wanted = {role: [int(colour[i:i + 2], 16) for i in (1, 3, 5)] for role, colour in
                  (("same", "#c3c8cf"), ("changed", "#5b8def"), ("moved", "#e0982e"),
                   ("old", "#e0982e"), ("added", "#3da35d"))}
        for one in self.scene("placements"):
            self.assertEqual(one["tint"][:3], wanted[one["role"]])
            self.assertEqual(one["tint"][3] < 128, one["role"] == "old")

    def test_old_places_are_those_of_the_first_assembly(self):
        old = [one["matrix"] for one in self.scene("placements") if one["role"] == "old"]
        moved = [one["matrix"] for one in self.scene("placements") if one["role"] == "moved"]
        self.assert_close(old[0][9:], [100, 0, 30])
        self.assert_close(old[0][:3], [0.8660254037844387, 0.5, 0])
        self.assert_close(moved[0][9:], [104, 0, 30])
        self.assert_close(moved[0][:3], [0.7071067811865476, 0.7071067811865475, 0])

    def test_title_names_both(self):
        self.assertEqual(self.text("title"), "bracket.xml → bracket-rev-b.xml")

    def test_steps_go_through_the_list_and_around(self):
        count = len(self.find_all("#differences li"))
        self.assertEqual(self.text("difference-position"), f"{count} differences")
        seen = []
        for step in range(count):
            self.press("n")
            self.assertEqual(self.text("difference-position"), f"{step + 1} of {count}")
            current = self.find_all("#differences li[aria-current=true]")
            seen.append(current[0].text)
        self.assertEqual(seen, [row.text for row in self.find_all("#differences li")])
        self.press("n")
        self.assertEqual(self.text("difference-position"), f"1 of {count}")
        self.press("N")
        self.assertEqual(self.text("difference-position"), f"{count} of {count}")

    def test_a_step_selects_and_shows_the_component(self):
        self.entry("moved by 4 0 0").click()
        self.assertEqual(self.text("details-name"), "Right vise")
        self.assertEqual(self.scene("matrix", self.scene("selected"))[9:], [104, 0, 30])
        target = self.scene("camera")["target"]
        self.assertLess(abs(target[0] - 104), 60)

    def test_a_click_on_the_list_steps_too(self):
        self.entry('"Hard jaw"').click()
        self.assertEqual(self.text("details-name"), "Moving jaw")
        self.click("#difference-next")
        self.assertEqual(self.text("details-name"), "Stop rod")

    def test_tree_has_both_assemblies(self):
        self.click("#components-tab")
        names = [name for name, file in self.row_texts()]
        self.assertEqual(names[0], "Before: bracket.xml")
        self.assertEqual(self.find_all("#tree .heading .name")[0].text, "Before: bracket.xml")
        self.find("#search").send_keys("stop")
        names = [name for name, file in self.row_texts()]
        self.assertEqual(names, ["Before: bracket.xml", "Bracket OP10", "Left vise", "Stop rod",
                                 "After: bracket-rev-b.xml", "Bracket OP10", "Right vise",
                                 "Stop rod"])


class Removed(PageTest):
    def test_what_is_only_in_the_first_assembly_is_red(self):
        self.open("bracket-rev-b.xml", "bracket.xml", options=["--diff"])
        removed = [one for one in self.scene("placements") if one["role"] == "removed"]
        self.assertEqual(sorted(self.scene("name", one["component"]) for one in removed),
                         ["Front parallel", "Raw part", "Rear parallel", "Stop rod"])
        self.assertEqual({tuple(one["tint"]) for one in removed}, {(0xd6, 0x46, 0x4f, 255)})


class Equal(PageTest):
    def test_equal_assemblies_have_no_differences(self):
        self.open("bracket.xml", "bracket.xml", options=["--diff"])
        self.assertEqual({one["role"] for one in self.scene("placements")}, {"same"})
        self.assertEqual(self.text("difference-position"), "0 differences")
        self.press("n")
        self.assertEqual(self.scene("selected"), -1)


if __name__ == "__main__":
    unittest.main()
