"""Assemblies: reading, writing, placements."""

import copy
import gc
import os
import pathlib
import pickle

import pytest

import trvfiles
from trvfiles import Assembly, Component, Matrix

SMALL = b"""<ComponentInfo version="1">
<Attributs><Dimension x="1" y="2.5" z="-3"/></Attributs>
<Component name="S\xc3\xa4ge" comment="" enabled="1">
<Translation x="0" y="0" z="10"/>
<Orientation><vec1 x="1" y="0" z="0"/><vec2 x="0" y="1" z="0"/><vec3 x="0" y="0" z="1"/></Orientation>
<Data number="2">
<Component name="&lt;Griff&gt;" comment="\xe2\x82\xac" enabled="1">
<Translation x="1" y="2" z="3"/>
<Orientation><vec1 x="0" y="1" z="0"/><vec2 x="-1" y="0" z="0"/><vec3 x="0" y="0" z="1"/></Orientation>
<Data number="1"><File name="griff.stl"/></Data>
</Component>
<Component name="Blatt" comment="" enabled="0">
<Translation x="0" y="0" z="0"/>
<Orientation><vec1 x="1" y="0" z="0"/><vec2 x="0" y="1" z="0"/><vec3 x="0" y="0" z="1"/></Orientation>
<Data number="1"><File name="blatt.stl"/></Data>
</Component>
</Data>
</Component>
</ComponentInfo>
"""


def test_reading_gives_every_field():
    assembly = Assembly.from_bytes(SMALL)
    assert assembly.dimension == (1.0, 2.5, -3.0)
    assert len(assembly) == 3
    root, grip, blade = assembly
    assert (root.name, root.geometry_file, root.translation) == ("Säge", "", (0.0, 0.0, 10.0))
    assert (grip.name, grip.comment, grip.geometry_file) == ("<Griff>", "€", "griff.stl")
    assert grip.enabled is True
    assert grip.translation == (1.0, 2.0, 3.0)
    assert grip.orientation == ((0.0, 1.0, 0.0), (-1.0, 0.0, 0.0), (0.0, 0.0, 1.0))
    assert (blade.name, blade.comment, blade.enabled) == ("Blatt", "", False)
    assert grip.parent is root and blade.parent is root and root.parent is None
    assert list(root.children) == [grip, blade]


@pytest.mark.parametrize("data", [
    SMALL, SMALL.decode().replace("ä", "a").replace("€", "Euro").encode()])
def test_a_comment_survives_other_changes(data):
    grip = Assembly.from_bytes(data).root.children[0]
    grip.translation = (7, 8, 9)
    grip.orientation = ((1, 0, 0), (0, 1, 0), (0, 0, 1))
    assert grip.copy().comment == grip.comment == ("€" if data is SMALL else "Euro")
    grip.comment = "neu"
    assert grip.copy().comment == grip.comment == "neu"


def test_placements_are_those_of_enabled_components_in_the_world():
    assembly = Assembly.from_bytes(SMALL)
    placed, = assembly.placements()
    assert placed.component is assembly.root.children[0]
    assert placed.geometry_file == "griff.stl"
    assert placed.matrix == Matrix([(0, 1, 0, 0), (-1, 0, 0, 0), (0, 0, 1, 0), (1, 2, 13, 1)])
    assert placed.translation == (1.0, 2.0, 13.0)


def test_placements_are_in_the_frame_of_a_parent():
    shifted = Matrix([(1, 0, 0, 0), (0, 1, 0, 0), (0, 0, 1, 0), (100, 0, 0, 1)])
    placed, = Assembly.from_bytes(SMALL).placements(shifted)
    assert placed.translation == (101.0, 2.0, 13.0)


def test_placements_follow_edits():
    assembly = Assembly.from_bytes(SMALL)
    grip, blade = assembly.root.children
    grip.enabled, blade.enabled, blade.geometry_file = False, True, "neu.stl"
    assert [(p.component, p.geometry_file) for p in assembly.placements()] == [(blade, "neu.stl")]


def test_placements_are_the_world_placements_of_the_components(project):
    for placed in trvfiles.read_assembly(project / "bracket.xml").placements():
        for row, world in zip(placed.matrix, placed.component.world):
            assert row == pytest.approx(world, abs=1e-12)


def test_an_assembly_without_files_has_no_placements():
    assert Assembly().placements() == []


@pytest.mark.parametrize("kind", [str, pathlib.Path, os.fsencode, lambda path: path])
def test_every_kind_of_path_is_taken(project, kind):
    assembly = trvfiles.read_assembly(kind(project / "bracket.xml"))
    assert len(assembly) == 19
    assembly.write(kind(project / "Kopie ä.xml"))
    assert (project / "Kopie ä.xml").read_bytes() == (project / "bracket.xml").read_bytes()


@pytest.mark.parametrize("name", ["bracket.xml", "bracket-rev-b.xml"])
def test_what_was_read_is_written_unchanged(project, name):
    assembly = trvfiles.read_assembly(project / name)
    assert assembly.to_bytes() == (project / name).read_bytes()


def test_an_assembly_is_built_from_components():
    assembly = Assembly(Component("A", children=[Component("B", "b.stl")]), (1, 2, 3))
    read = Assembly.from_bytes(assembly.to_bytes())
    assert read == assembly
    assert read.dimension == (1.0, 2.0, 3.0)
    assert [c.name for c in read] == ["A", "B"]


def test_equality_has_a_tolerance():
    one, other = Assembly.from_bytes(SMALL), Assembly.from_bytes(SMALL)
    other.dimension = (1.0000001, 2.5, -3)
    assert one == other
    other.root.children[0].name = "x"
    assert one != other
    assert one != "x"


def test_find_begins_with_the_root():
    assembly = Assembly.from_bytes(SMALL)
    assert assembly.find("Säge") is assembly.root
    assert assembly["Säge/Blatt"] is assembly.root.children[1]
    with pytest.raises(KeyError) as caught:
        assembly.find("Sage/Blatt")
    assert str(caught.value) == "there is no root 'Sage'; the root is 'Säge'"


def test_a_root_belongs_to_one_assembly():
    assembly = Assembly(Component("A"))
    with pytest.raises(ValueError):
        Assembly(assembly.root)
    with pytest.raises(ValueError):
        Component("B").children.append(assembly.root)
    replaced = assembly.root
    assembly.root = Component("C")
    assert Assembly(replaced).root is replaced
    with pytest.raises(ValueError):
        Assembly().root = assembly.root
    with pytest.raises(TypeError):
        Assembly("A")


@pytest.mark.parametrize("duplicate_of", [
    Assembly.copy, copy.copy, copy.deepcopy, lambda part: pickle.loads(pickle.dumps(part))])
def test_a_copy_is_an_assembly_of_its_own(duplicate_of):
    original = Assembly.from_bytes(SMALL)
    duplicate = duplicate_of(original)
    duplicate.root.children[0].name = "x"
    duplicate.dimension = (0, 0, 0)
    assert original == Assembly.from_bytes(SMALL)
    assert duplicate.root.children[1].path == "Säge/Blatt[1]"


def test_parts_outlive_their_assembly():
    blade = Assembly.from_bytes(SMALL)["Säge/Blatt"]
    placed = Assembly.from_bytes(SMALL).placements()
    gc.collect()
    assert blade.path == "Säge/Blatt[1]"
    assert placed[0].component.parent.name == "Säge"


def test_a_missing_file_is_a_file_not_found_error(tmp_path):
    with pytest.raises(FileNotFoundError) as caught:
        trvfiles.read_assembly(tmp_path / "missing.xml")
    error = caught.value
    assert isinstance(error, trvfiles.FileError)
    assert (error.status, error.errno, error.filename) == (
        trvfiles.Status.OPEN_ERROR, 2, str(tmp_path / "missing.xml"))
    assert str(error).startswith(str(tmp_path / "missing.xml") + ": ")


def test_a_fault_has_file_line_and_column(tmp_path):
    path = tmp_path / "bad.xml"
    path.write_bytes(SMALL.replace(b"</Component>", b"", 1))
    with pytest.raises(trvfiles.ContentError) as caught:
        trvfiles.read_assembly(path)
    error = caught.value
    assert (error.file, error.line, error.column, error.status) == (str(path), 17, 7, 4)
    assert str(error) == f"{path}:17:7: tag mismatch"
    assert isinstance(error, ValueError)


def test_a_fault_in_bytes_has_line_and_column():
    with pytest.raises(trvfiles.ContentError) as caught:
        Assembly.from_bytes(b"<ComponentInfo>\n<")
    assert caught.value.file is None
    assert str(caught.value).startswith("<bytes>:2:")


def test_a_wrong_root_element_is_a_structure_error():
    with pytest.raises(trvfiles.StructureError) as caught:
        Assembly.from_bytes(b"<Other/>")
    assert (caught.value.cause, caught.value.subject) == ("root-element-wrong", "Other")


def test_a_component_without_file_and_children_is_not_written(tmp_path):
    path = tmp_path / "a.xml"
    path.write_text("kept")
    with pytest.raises(trvfiles.ContentError) as caught:
        Assembly(Component("Empty")).write(path)
    assert "Empty" in str(caught.value)
    assert path.read_text() == "kept"


def test_notes_say_what_was_read_otherwise():
    assert Assembly.from_bytes(SMALL).notes == ()
    changed = SMALL.replace(b'<Dimension x="1"', b'<Dimension x="one"')
    note, = Assembly.from_bytes(changed).notes
    assert (note.line, note.attribute) == (2, "x")
    assert (note.kind, note.value, note.occurrences) == ("not-a-number", "one", 0)
    assert note.text


def test_a_note_on_a_name_has_the_expected_one():
    note, = Assembly.from_bytes(SMALL.replace(b"<Dimension", b"<dimension")).notes
    assert (note.kind, note.subject) == ("unknown-name", "dimension")
    assert (note.parent, note.expected) == ("Attributs", "Dimension")


@pytest.mark.parametrize("argument, error, text", [
    (5, TypeError, "expected str, bytes or os.PathLike object, not int"),
    ("a\0b", ValueError, "a path contains a null character"),
    (b"\xff.xml", ValueError, "a path is not Unicode: '\\udcff.xml'"),
])
def test_a_wrong_path_is_rejected(argument, error, text):
    with pytest.raises(error) as caught:
        trvfiles.read_assembly(argument)
    assert str(caught.value) == text


def test_bytes_are_no_text():
    with pytest.raises(TypeError):
        Assembly.from_bytes("<ComponentInfo/>")
    assert Assembly.from_bytes(memoryview(SMALL)) == Assembly.from_bytes(bytearray(SMALL))


def test_a_null_character_in_a_text_is_not_written():
    with pytest.raises(ValueError) as caught:
        Assembly(Component("a\0b", "b.stl")).to_bytes()
    assert str(caught.value) == "name contains a null character"


def test_the_representation_has_name_and_size():
    assert repr(Assembly.from_bytes(SMALL)) == "<Assembly 'Säge', 3 components>"
