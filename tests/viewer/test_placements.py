"""The placed geometry: what is drawn is what `trvfiles assembly list` prints."""
import json
import unittest

import geometry
from page_test import PageTest, SAMPLE, assembly, component, run_command


class Placements(PageTest):
    def listed(self, file, cwd):
        data = json.loads(run_command("assembly", "list", "--json", file, cwd=cwd))
        return [entry["vec1"] + entry["vec2"] + entry["vec3"] + entry["translation"]
                for entry in data["placements"]]

    def check_against_list(self, file, cwd):
        self.open(file, cwd=cwd)
        drawn = [one["matrix"] for one in self.scene("placements")]
        listed = self.listed(file, cwd)
        self.assertEqual(len(drawn), len(listed))
        for matrix, expected in zip(drawn, listed):
            self.assert_close(matrix, expected)
        return drawn

    def test_sample_project_is_drawn_as_listed(self):
        self.assertEqual(len(self.check_against_list("bracket.xml", SAMPLE)), 10)

    def test_second_sample_is_drawn_as_listed(self):
        self.assertEqual(len(self.check_against_list("bracket-rev-b.xml", SAMPLE)), 14)

    def test_far_mirrored_and_scaled_placements_are_drawn_as_listed(self):
        self.write("box.stl", geometry.stl_binary())
        mirrored = ((-1, 0, 0), (0, 1, 0), (0, 0, 1))
        scaled = ((1000, 0, 0), (0, 0.001, 0), (0.5, 0, 1))
        self.write("far.xml", assembly(component("root", [
            component("far", "box.stl", (123456.789012345, -98765.4321, 1e5 + 0.001)),
            component("mirrored", "box.stl", (0.1, 0.2, 0.3), mirrored),
            component("scaled", "box.stl", (1 / 3, 2 / 3, 0), scaled),
        ], (100000.1, 0, 0))))
        drawn = self.check_against_list("far.xml", self.work)
        self.assertAlmostEqual(drawn[0][9], 223456.889012345, delta=1e-8)

    def test_bounds_of_the_sample_are_those_of_its_parts(self):
        self.open_sample()
        bounds = self.scene("bounds")
        self.assert_close(bounds["min"], [-240, -150, 0])
        self.assert_close(bounds["max"], [240, 150, 145])
        raw_part = self.scene("bounds", self.component("Raw part"))
        self.assert_close(raw_part["min"], [-190, -10, 105])
        self.assert_close(raw_part["max"], [-90, 50, 145])
        left_jaw = self.scene("bounds", self.component("Fixed jaw"))
        self.assert_close(left_jaw["min"], [-200, 50, 80])
        self.assert_close(left_jaw["max"], [-80, 70, 120])

    def test_every_format_has_the_same_box(self):
        files = {
            "binary.stl": geometry.stl_binary(), "text.STL": geometry.stl_text(),
            "box.obj": geometry.obj(), "text.ply": geometry.ply_text(),
            "little.ply": geometry.ply_binary("<"), "big.ply": geometry.ply_binary(">"),
        }
        for name, content in files.items():
            self.write(name, content)
        self.write("formats.xml", assembly(component("root", [
            component(name, name, (100 * i, 0, 0)) for i, name in enumerate(files)])))
        self.open("formats.xml", cwd=self.work)
        self.assertEqual(self.scene("reasons"), [None] * len(files))
        for i, name in enumerate(files):
            with self.subTest(name):
                bounds = self.scene("bounds", self.component(name))
                self.assert_close(bounds["min"], [100 * i, 0, 0])
                self.assert_close(bounds["max"], [100 * i + 10, 20, 30])

    def test_each_file_is_decoded_once_and_its_text_is_removed(self):
        self.open_sample()
        self.assertEqual(self.find_all("script[id^=geometry-]"), [])
        self.assertEqual(len(self.scene("reasons")), 6)

    def test_pick_finds_the_point_on_the_surface(self):
        self.open_sample()
        self.press("2")
        pixel = self.scene("pixelOf", [-140, 20, 145])
        hit = self.scene("pick", *pixel)
        self.assertEqual(hit["component"], self.component("Raw part"))
        self.assert_close(hit["point"], [-140, 20, 145], 1e-9)

    def test_pick_takes_the_nearer_surface_of_boxes_in_each_other(self):
        # The box around the floor and a chip above it begins before that of the part on the floor.
        floor = ["v -50 -50 0", "v 50 -50 0", "v 50 50 0", "v -50 50 0", "f 1 2 3 4",
                 "v 49 49 90", "v 50 49 90", "v 50 50 90", "f 5 6 7"]
        self.write("floor.obj", "\n".join(floor) + "\n")
        self.write("box.stl", geometry.stl_binary())
        self.write("nested.xml", assembly(component("root", [
            component("floor", "floor.obj"), component("part", "box.stl")])))
        self.open("nested.xml", cwd=self.work)
        self.press("2", "p")
        hit = self.scene("pick", *self.scene("pixelOf", [5, 10, 30]))
        self.assertEqual(hit["component"], self.component("part"))
        self.assert_close(hit["point"], [5, 10, 30], 1e-4)


if __name__ == "__main__":
    unittest.main()
