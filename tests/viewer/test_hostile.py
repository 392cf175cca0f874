"""What files must not do: texts that look like markup, missing and broken geometry, odd numbers."""
import unittest

import geometry
from page_test import PageTest, assembly, component

NAMES = [
    "</script><script>document.title='hacked'</script>", "<img src=x onerror=alert(1)>",
    "\"'`${1}&amp;<!--", "]]>", "\U0001f529 bolt \u202eright to left", "line\nbreak\ttab",
    "__proto__", "constructor", "x" * 10000, "",
]


class HostileTexts(PageTest):
    def setUp(self):
        self.write("box.stl", geometry.stl_text())
        parts = [component(name, "box.stl", (40 * i, 0, 0), comment=name)
                 for i, name in enumerate(NAMES)]
        parts.append(component("odd file", "no <script> <b>such<b> file.stl"))
        self.write("hostile <b> 'n' &amp; <title>.xml", assembly(component("<b>root</b>", parts)))
        self.open("hostile <b> 'n' &amp; <title>.xml", cwd=self.work)

    def test_texts_are_shown_as_they_are(self):
        shown = self.js("""return [...document.querySelectorAll('#tree .row:not([hidden]) .name')]
            .map((name) => name.textContent)""")
        for name in ("<b>root</b>", NAMES[0], NAMES[1], NAMES[2], NAMES[6], NAMES[8]):
            self.assertIn(name, shown)
        self.assertEqual(self.text("title"), "hostile <b> 'n' &amp; <title>.xml")
        self.assertEqual(self.browser.title, "hostile <b> 'n' &amp; <title>.xml")

    def test_no_text_becomes_an_element(self):
        count = "return document.querySelectorAll('b, img, #tree script').length"
        self.assertEqual(self.js(count), 0)
        for i in range(len(NAMES) + 2):
            self.js("viewer.scene.select(arguments[0])", i)
            self.assertEqual(self.js(count), 0)
        self.assertEqual(self.text("problems"),
                         "no <script> <b>such<b> file.stl" + "file not found")

    def test_long_name_leaves_the_layout_alone(self):
        self.js("viewer.scene.select(arguments[0])", NAMES.index("x" * 10000) + 1)
        self.assertEqual(self.find("#side").size["width"], 330)
        self.assertGreater(self.find("#canvas").size["width"], 900)
        self.assertEqual(self.js("return document.documentElement.scrollWidth"), 1280)

    def test_policy_refuses_inline_scripts(self):
        self.js("""window.refused = [];
            document.addEventListener('securitypolicyviolation',
                (event) => window.refused.push(event.effectiveDirective));
            const script = document.createElement('script');
            script.textContent = 'window.hacked = true';
            document.body.append(script);
            document.body.setAttribute('onclick', 'window.hacked = true');
            document.body.click();""")
        self.assertIsNone(self.js("return window.hacked"))
        self.assertEqual(set(self.js("return window.refused")),
                         {"script-src-elem", "script-src-attr"})
        self.browser.get_log("browser")  # the refusals


class BrokenGeometry(PageTest):
    FILES = {
        "missing.stl": (None, "file not found"),
        "drawing.dwg": (b"AC1032", "not an STL, OBJ or PLY file"),
        "empty.stl": (b"", None),
        "cut.stl": (geometry.stl_binary()[:-60], None),
        "huge-count.stl": (b"x" * 80 + b"\xff\xff\xff\xff" + b"\0" * 100, None),
        "no-facets.stl": ("solid nothing\nendsolid nothing\n", None),
        "facet-of-two.stl": (geometry.stl_text().replace("vertex 0 0 0\n", "", 1), None),
        "facets-of-two-and-four.stl": (
            geometry.stl_text().replace("vertex 0 0 0\n", "", 1)
            .replace("endloop\nendfacet\nendsolid", "vertex 0 0 0\nendloop\nendfacet\nendsolid"),
            None),
        "nan.stl": (geometry.stl_text().replace("vertex 0 0 0", "vertex nan 0 0", 1), None),
        "index.obj": (geometry.obj().replace("f 1//1", "f 99//1", 1), None),
        "words.obj": ("v 1 2 three\nv 0 0 0\nv 1 1 1\nf 1 2 3\n", None),
        "cut.ply": (geometry.ply_binary("<")[:-10], None),
        "index.ply": (geometry.ply_text().replace("4 0 2 3 1", "4 0 2 3 99", 1), None),
        "count.ply": ("ply\nformat ascii 1.0\nelement nothing 4000000000\nelement vertex 1\n"
                      "property float x\nproperty float y\nproperty float z\nelement face 1\n"
                      "property list uint int vertex_indices\nend_header\n0 0 0\n4000000000 0\n",
                      None),
        "nan.ply": (geometry.ply_text().replace("0 0 0 255", "0 Infinity 0 255", 1), None),
        "no-faces.obj": ("v 1 2 3\n", None),
        "noise.ply": (bytes(range(256)), None),
    }

    def setUp(self):
        for name, (content, reason) in self.FILES.items():
            if content is not None:
                self.write(name, content)
        self.write("good.stl", geometry.stl_text())
        parts = [component(name, name, (0, 100 * i, 0)) for i, name in enumerate(self.FILES)]
        parts.append(component("good", "good.stl", (0, -100, 0)))
        self.write("broken.xml", assembly(component("root", parts)))
        self.open("broken.xml", cwd=self.work)

    def test_each_is_a_labelled_box_with_a_reason(self):
        reasons = self.scene("reasons")
        self.assertEqual(reasons[-1], None)
        for name, (content, reason), actual in zip(self.FILES, self.FILES.values(), reasons):
            with self.subTest(name):
                self.assertTrue(actual)
                if reason:
                    self.assertEqual(actual, reason)
        self.assertEqual(len(self.scene("placements")), len(self.FILES) + 1)
        labels = [label.text for label in self.find_all(".label-missing")]
        self.assertEqual(sorted(labels), sorted(self.FILES))

    def test_the_list_says_why(self):
        self.assertEqual(self.text("problems-count"), str(len(self.FILES)))
        self.click("#problems-tab")
        texts = [item.text for item in self.find_all("#problems li")]
        self.assertEqual(texts[0], "missing.stl\nfile not found")
        self.assertIn("no-facets.stl\nthe file ends too early", texts)
        self.assertIn("no-faces.obj\nthe file has no triangles", texts)
        self.assertIn("nan.ply\na coordinate is not a finite number", texts)
        self.assertIn("facets-of-two-and-four.stl\nTHREE.STLLoader: Something isn't right with the "
                      "vertices of face number 0", texts)
        self.assertIn("cut.ply\nthe file ends too early", texts)
        self.assertIn("index.ply\na face has point 100 of 8", texts)

    def test_a_box_is_at_its_placement(self):
        bounds = self.scene("bounds", self.component("cut.stl"))
        center = [(a + b) / 2 for a, b in zip(bounds["min"], bounds["max"])]
        self.assert_close(center, [0, 300, 0])


class Polygons(PageTest):
    FIVE = ("ply\nformat ascii 1.0\nelement vertex 5\nproperty float x\nproperty float y\n"
            "property float z\nelement face 1\nproperty list uchar int vertex_index\nend_header\n"
            "0 0 0\n10 0 0\n14 8 0\n5 12 0\n-4 8 0\n5 0 1 2 3 4\n")

    def setUp(self):
        self.write("five.ply", self.FIVE)
        self.write("five.xml", assembly(component("five", "five.ply")))
        self.open("five.xml", cwd=self.work)

    def test_ply_faces_with_five_corners_are_drawn(self):
        self.assertEqual(self.scene("reasons"), [None])
        bounds = self.scene("bounds")
        self.assert_close(bounds["min"], [-4, 0, 0])
        self.assert_close(bounds["max"], [14, 12, 0])

    def test_loader_of_three_js_leaves_them_out(self):
        """This is why the page reads PLY files itself."""
        index = self.js("return new THREE.PLYLoader().parse(arguments[0]).index", self.FIVE)
        self.assertIsNone(index)


class OddPlacements(PageTest):
    def open_axes(self, **places):
        self.write("box.stl", geometry.stl_text())
        parts = [component(name, "box.stl", *place) for name, place in places.items()]
        self.write("odd.xml", assembly(component("root", parts)))
        self.open("odd.xml", cwd=self.work)

    def test_placements_that_are_not_finite_are_listed(self):
        self.open_axes(good=((0, 0, 0),), bad=((float("inf"), 0, 0),),
                       worse=((0, float("nan"), 0),))
        self.assertEqual(len(self.scene("placements")), 1)
        self.assertIn("2 placements", self.text("problems"))
        self.assert_close(self.scene("bounds")["max"], [10, 20, 30])
        self.js("viewer.scene.select(2)")
        self.assertIn("inf", self.text("details-body").lower())

    def test_flat_and_mirrored_placements_can_be_picked_or_missed(self):
        self.open_axes(mirrored=((0, 0, 0), ((-1, 0, 0), (0, 1, 0), (0, 0, 1))),
                       flat=((50, 0, 0), ((1, 0, 0), (0, 1, 0), (0, 0, 0))))
        self.press("2")
        self.assertEqual(self.scene("pick", *self.scene("pixelOf", [-5, 10, 30]))["component"], 1)
        self.assertIsNone(self.scene("pick", *self.scene("pixelOf", [55, 10, 0])))

    def test_assembly_without_geometry_says_so(self):
        self.write("empty.xml", assembly(component("only a group", [])))
        self.open("empty.xml", cwd=self.work)
        self.assertIn("no placed geometry", self.text("message"))
        self.assertEqual(self.scene("placements"), [])
        self.press("f", "1", "p", "x", "k", "d", "a")


if __name__ == "__main__":
    unittest.main()
