"""The programs of examples/python and the samples of the pages do what they say."""

import ast
import csv
import io
import os
import re
import runpy
import shutil

import pytest

import trvfiles
from conftest import REPOSITORY

EXAMPLES = REPOSITORY / "examples/python"
PAGE = (REPOSITORY / "docs/python.md").read_text(encoding="utf-8")


@pytest.fixture
def run_example(monkeypatch, capsys):
    def run(name, *arguments):
        monkeypatch.setattr("sys.argv", [name, *map(str, arguments)])
        runpy.run_path(str(EXAMPLES / name), run_name="__main__")
        return capsys.readouterr().out
    return run


def test_a_geometry_file_is_renamed_in_200_assemblies(run_example, project):
    files = [shutil.copy(project / "bracket.xml", project / f"{i:03}.xml") for i in range(199)]
    # Has no such file, and is not written.
    other = project / "other.xml"
    other.write_bytes((project / "bracket.xml").read_bytes()
                      .replace(b"geometry/vise-jaw.stl", b"geometry/x.stl") + b"\n")
    unchanged = other.read_bytes()
    printed = run_example("rename_geometry.py", "geometry/vise-jaw.stl", "geometry/jaw-120.stl",
                          *files, other)
    assert printed == "".join(f"{file}: 4 renamed\n" for file in files)
    expected = (project / "bracket.xml").read_bytes().replace(b"vise-jaw.stl", b"jaw-120.stl")
    assert all((project / f"{i:03}.xml").read_bytes() == expected for i in range(199))
    assert other.read_bytes() == unchanged


def test_contexts_without_their_position_file_are_listed(run_example, project, tmp_path):
    for i in range(50):
        shutil.copytree(project, tmp_path / "projects" / f"{i:02}")
    assert run_example("missing_positions.py", tmp_path / "projects") == ""
    removed = "[stockposition@bracket-left]left-vise.ref"
    for i in (7, 33):
        os.remove(tmp_path / "projects" / f"{i:02}" / removed)
    assert run_example("missing_positions.py", tmp_path / "projects") == "".join(
        f"{tmp_path / 'projects' / name / 'bracket-left.mctx'}: {removed!r} is missing\n"
        for name in ("07", "33"))


def test_all_placements_become_a_csv(run_example, project):
    file = project / "bracket.xml"
    rows = list(csv.reader(io.StringIO(run_example("placements_csv.py", file))))
    assert rows[0] == ["assembly", "component", "geometry file", "x", "y", "z"]
    assert rows[2] == [str(file), "Bracket OP10/Left vise[1]/Body[0]", "geometry/vise-body.stl",
                       "-140.0", "0.0", "30.0"]
    assert len(rows) == 1 + len(trvfiles.read_assembly(file).placements())


@pytest.mark.parametrize("name", sorted(path.name for path in EXAMPLES.glob("*.py")))
def test_an_example_has_ten_lines(name):
    tree = ast.parse((EXAMPLES / name).read_text(encoding="utf-8"))
    first = next(node.lineno for node in tree.body
                 if not isinstance(node, (ast.Expr, ast.Import, ast.ImportFrom)))
    lines = (EXAMPLES / name).read_text(encoding="utf-8").splitlines()[first - 1:]
    assert len(lines) <= 10


def samples():
    """Each sample of the page with the block after it, which is what it prints."""
    return re.findall(r"```python\n(.*?)```\n+(?:It prints\n+```\n(.*?)```)?", PAGE, re.DOTALL)


@pytest.mark.parametrize("sample, expected", samples(), ids=range(len(samples())))
def test_a_sample_of_the_page_prints_what_the_page_shows(project, run_python, sample, expected):
    installation = str(REPOSITORY / "examples/sample-project/installation")
    printed = run_python(f"import os; os.chdir({project.name!r})\n"
                         + sample.replace("/opt/shop", installation))
    assert printed.replace(installation, "/opt/shop") == expected


def test_the_sample_of_the_first_page_prints_what_the_page_shows(project, run_python):
    page = (REPOSITORY / "README.md").read_text(encoding="utf-8")
    sample, expected = re.search(r"```python\n(.*?)```\n.*?\n```\n(.*?)```", page, re.DOTALL).groups()
    assert expected.startswith("geometry/base-plate.stl  0 0 0\n")
    assert run_python(f"import os; os.chdir({project.name!r})\n" + sample) == expected


def test_the_page_names_only_what_the_package_has():
    table = PAGE[PAGE.index("## Which C++ call"):]
    for name in re.findall(r"`(?:trvfiles\.)([A-Za-z_]+)(?:[(.`])", table):
        assert hasattr(trvfiles, name), name
    for kind, name in re.findall(r"`([A-Z][A-Za-z]+)\.([a-z_]+)", table):
        assert hasattr(getattr(trvfiles, kind), name) or name in getattr(
            trvfiles, kind).__annotations__, (kind, name)


def test_the_page_has_every_function_that_the_package_calls():
    from trvfiles import _interface
    for name in _interface._ARGUMENTS:
        assert f"trvfiles_{name}()" in PAGE, name
