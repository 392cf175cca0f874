"""Tests of scripts/check-links, and of what doxygen reads instead of pages and headers."""
import pathlib
import subprocess
import sys
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent


def run(program, *arguments, cwd=ROOT):
    return subprocess.run([sys.executable, "-B", ROOT / program, *arguments], cwd=cwd,
                          stdout=subprocess.PIPE, stderr=subprocess.PIPE, encoding="utf-8")


class Files(unittest.TestCase):
    def setUp(self):
        directory = tempfile.TemporaryDirectory()
        self.addCleanup(directory.cleanup)
        self.directory = pathlib.Path(directory.name).resolve()

    def write(self, name, text):
        path = self.directory / name
        path.parent.mkdir(exist_ok=True)
        path.write_text(text, encoding="utf-8")
        return path


class CheckLinks(Files):
    def findings(self, *files):
        """The findings, without the directory; there is at least one."""
        result = run("scripts/check-links", *(files or [self.directory]))
        self.assertEqual(result.returncode, 1, result.stdout)
        return result.stdout.replace(f"{self.directory}/", "").splitlines()

    def check_passes(self, expected, *files):
        result = run("scripts/check-links", *(files or [self.directory]))
        self.assertEqual((result.returncode, result.stdout), (0, expected + "\n"))

    def test_names_the_page_the_line_and_the_link_to_a_missing_file(self):
        self.write("index.html", '<p>\n<a href="none.html">x</a> <img src="none.png"/>')
        self.assertEqual(self.findings(), [
            "index.html:2: none.html: the file does not exist",
            "index.html:2: none.png: the file does not exist"])

    def test_needs_the_anchor_in_the_other_page_and_in_the_own_one(self):
        self.write("index.html", '<a href="other.html#b">x</a>\n<a href="#c">x</a>')
        self.write("other.html", '<h2 id="a">x</h2><a name="d">x</a>')
        self.assertEqual(self.findings(), [
            "index.html:1: other.html#b: the anchor does not exist",
            "index.html:2: #c: the anchor does not exist"])

    def test_accepts_files_anchors_and_complete_urls(self):
        self.write("index.html", '<a href="sub/a%20b.html#x">x</a><a href="#n">x</a><a name="n">'
                                 '</a><a href="https://example.org/a">x</a>'
                                 '<a href="javascript:f()">x</a>')
        self.write("sub/a b.html", '<p id="x"><a href="../index.html">x</a></p>')
        self.check_passes("links: 5 in 2 files")

    def test_rejects_incomplete_urls_and_other_schemes(self):
        self.write("index.html", '<a href="https://">x</a>\n<a href="FILE:LINE">x</a>')
        self.assertEqual(self.findings(), [
            "index.html:1: https://: is not a complete URL",
            "index.html:2: FILE:LINE: is not a link to a file or to a page"])

    def test_rejects_a_link_that_leaves_the_site(self):
        self.write("site/index.html", '<a href="../other.html">x</a>')
        self.write("other.html", "")
        self.assertEqual(self.findings(self.directory / "site"),
                         ["site/index.html:1: ../other.html: is outside of the directory"])

    def test_finds_the_anchors_of_markdown_headings(self):
        page = self.write("a.md", "# `env`, a title\n[1](#env-a-title) [2](#sub) [3](#sub-1)\n"
                                  "## Sub\n## Sub\n[4](b.md#none)\n![5](none.svg)\n")
        self.write("b.md", "```\n# none\n```\n")
        self.assertEqual(self.findings(page), [
            "a.md:5: b.md#none: the anchor does not exist",
            "a.md:6: none.svg: the file does not exist"])

    def test_ignores_links_in_markdown_code(self):
        page = self.write("a.md", "`[x](none.md)` and\n```\n[x](none.md)\n```\n"
                                  "[`code`](a.md) ``[y](none.md)``\n")
        self.check_passes("links: 1 in 1 files", page)

    def test_reports_a_file_that_cannot_be_read(self):
        result = run("scripts/check-links", self.directory / "none.html")
        self.assertEqual(result.returncode, 1)
        self.assertIn("check-links: ", result.stderr)

    def test_passes_for_the_pages_of_the_repository(self):
        result = run("scripts/check-links")
        self.assertEqual((result.returncode, result.stderr), (0, ""), result.stdout)


class PageFilter(Files):
    def check(self, text, expected):
        self.write("docs/page.md", text)
        result = run("docs/site/page-filter", "docs/page.md", cwd=self.directory)
        self.assertEqual(result.stdout, expected)

    def test_gives_headings_anchors_that_contain_the_page(self):
        self.check("# A page\n## A `part`, 2\n", "# A page {#page}\n## A `part`, 2 {#page-a-part-2}\n")

    def test_leads_links_to_the_pages_of_the_site(self):
        self.check("[a](command.md) [`b`](command.md#env-list) [c](#part) [d](../CHANGELOG.md)\n",
                   '<a href="command.html">a</a> <a href="command.html#command-env-list">`b`</a> '
                   '<a href="page.html#page-part">c</a> <a href="changelog.html">d</a>\n')

    def test_leads_links_to_sources_to_their_reference(self):
        self.check("[a](../trvfiles/c/trvfiles.h) [b](../python/trvfiles/__init__.py) "
                   "[c](schemas/show.json) [d](https://example.org/x.md)\n",
                   '<a href="trvfiles_8h.html">a</a> <a href="python/index.html">b</a> '
                   '<a href="schemas/show.json">c</a> <a href="https://example.org/x.md">d</a>\n')

    def test_protects_characters_of_code_spans(self):
        self.check("`plain_name` `a\\b` `'%f'` `&lt;` ``x`\\``\n",
                   "`plain_name` <code>a\\\\b</code> <code>'\\%f'</code> <code>&amp;lt;</code> "
                   "<code>x`\\\\</code>\n")

    def test_keeps_the_escape_of_a_bar_in_a_table(self):
        self.check("| `a\\|b` | `a\\\\b` |\n", "| <code>a\\|b</code> | <code>a\\\\\\\\b</code> |\n")

    def test_leaves_fenced_blocks_and_images_alone(self):
        text = "```\n# a [b](c.md) `\\`\n```\n![x](viewer.png)\n"
        self.check(text, text)


class HeaderFilter(Files):
    def check(self, text, expected):
        result = run("docs/site/header-filter", self.write("a.h", text))
        self.assertEqual(result.stdout, expected)

    def test_refers_from_an_overload_to_the_one_before(self):
        self.check("/// Reads.\nvoid read(int a,\n          int b);\nvoid read();\n",
                   "/// Reads.\nvoid read(int a,\n          int b);\n"
                   "/// As the overload before it, with these arguments.\nvoid read();\n")

    def test_repeats_the_comment_for_another_name(self):
        self.check("    /// The name.\n    /// Not empty.\n    int get() const;\n    void set(int n);\n",
                   "    /// The name.\n    /// Not empty.\n    int get() const;\n"
                   "    /// The name.\n    /// Not empty.\n    void set(int n);\n")

    def test_repeats_the_comment_for_fields_and_macros(self):
        self.check("/** Sizes. */\n#define A 1\n#define B \\\n    2\n\n/// x\nint a = 1;\nint b[2];\n",
                   "/** Sizes. */\n#define A 1\n/** Sizes. */\n#define B \\\n    2\n\n"
                   "/// x\nint a = 1;\n/// x\nint b[2];\n")

    def test_does_not_comment_after_an_empty_line_a_block_or_a_destructor(self):
        text = ("/// A.\nA();\n~A();\n\nvoid f();\n/// S.\nstruct S {\n    int a;\n};\n"
                "/// E.\nint e; ///< own\nint g; ///< own\n")
        self.check(text, text)


unittest.main()
