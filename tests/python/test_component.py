"""Components: fields, children, paths, copies."""

import copy
import gc
import pickle
import weakref

import pytest

from trvfiles import Component, Matrix, PathError, differences

TURNED = ((0.0, 1.0, 0.0), (-1.0, 0.0, 0.0), (0.0, 0.0, 1.0))


def tree():
    return Component("Set-up", children=[
        Component("Vise", translation=(10, 0, 0), orientation=TURNED, children=[
            Component("Jaw", "jaw.stl", translation=(1, 2, 3)),
            Component("Jaw", "jaw.stl"),
        ]),
        Component("Stop", "stop.stl", comment="M8", enabled=False),
    ])


def names(components):
    return [component.name for component in components]


def test_a_default_component_is_empty_and_enabled():
    component = Component()
    assert (component.name, component.comment, component.geometry_file) == ("", "", "")
    assert component.enabled is True
    assert component.translation == (0.0, 0.0, 0.0)
    assert component.orientation == ((1.0, 0.0, 0.0), (0.0, 1.0, 0.0), (0.0, 0.0, 1.0))
    assert component.parent is None
    assert list(component.children) == []


def test_numbers_become_floats():
    component = Component(translation=[1, 2, 3])
    assert component.translation == (1.0, 2.0, 3.0)
    assert all(isinstance(number, float) for number in component.translation)
    component.orientation = [[0, 2, 0], [1, 0, 0], [0, 0, 1]]
    assert component.orientation == ((0.0, 2.0, 0.0), (1.0, 0.0, 0.0), (0.0, 0.0, 1.0))


@pytest.mark.parametrize("field, value, error, text", [
    ("name", 5, TypeError, "name has to be a str, not int"),
    ("geometry_file", None, TypeError, "geometry_file has to be a str, not NoneType"),
    ("comment", b"x", TypeError, "comment has to be a str, not bytes"),
    ("translation", (1, 2), ValueError, "translation has to be 3 numbers, not 2"),
    ("translation", 7, TypeError, "translation has to be 3 numbers, not 7"),
    ("translation", "abc", ValueError, "could not convert string to float: 'a'"),
    ("orientation", ((1, 0, 0), (0, 1, 0)), ValueError, "orientation has to be 3 vectors, not 2"),
    ("orientation", ((1, 0), (0, 1), (0, 0)), ValueError,
     "each vector of the orientation has to be 3 numbers, not 2"),
])
def test_a_wrong_value_is_rejected_and_changes_nothing(field, value, error, text):
    component = tree().children[0]
    before = component._values()
    with pytest.raises(error) as caught:
        setattr(component, field, value)
    assert str(caught.value) == text
    assert component._values() == before


def test_an_unknown_field_is_rejected():
    with pytest.raises(AttributeError):
        Component().geometry = "x.stl"


def test_walk_gives_each_component_before_its_children():
    assert names(tree().walk()) == ["Set-up", "Vise", "Jaw", "Jaw", "Stop"]


def test_the_children_may_change_during_a_walk():
    root = tree()
    for component in root.walk():
        if component.name == "Vise":
            del component.children[0]
            component.children.append(Component("New"))
    assert names(root.walk()) == ["Set-up", "Vise", "Jaw", "New", "Stop"]


def test_the_world_placement_is_the_product_up_to_the_root():
    root = tree()
    root.translation = (0, 0, 100)
    jaw = root.children[0].children[0]
    # The vise turns x to y and y to -x, then moves by 10.
    assert jaw.world == Matrix([(0, 1, 0, 0), (-1, 0, 0, 0), (0, 0, 1, 0), (8, 1, 103, 1)])
    assert jaw.matrix.translation == (1.0, 2.0, 3.0)


def test_a_matrix_sets_translation_and_orientation():
    component = Component()
    component.matrix = Matrix([(0, 1, 0, 0), (-1, 0, 0, 0), (0, 0, 1, 0), (8, 1, 103, 1)])
    assert component.translation == (8.0, 1.0, 103.0)
    assert component.orientation == TURNED


def test_children_are_a_list():
    root = tree()
    children = root.children
    added = Component("Added")
    children.append(added)
    assert names(children) == ["Vise", "Stop", "Added"]
    assert added.parent is root
    children.insert(0, Component("First"))
    assert names(children[1:3]) == ["Vise", "Stop"]
    children.reverse()
    assert names(children) == ["Added", "Stop", "Vise", "First"]
    assert children.index(added) == 0
    removed = children.pop(0)
    assert removed is added
    assert added.parent is None
    children.sort(key=lambda component: component.name)
    assert names(children) == ["First", "Stop", "Vise"]
    assert [child.index for child in children] == [0, 1, 2]
    last = children[2]
    children.clear()
    assert last.parent is None
    assert list(children) == []


def test_indices_follow_every_change():
    root = Component(children=[Component(str(i)) for i in range(4)])
    assert [child.index for child in root.children] == [0, 1, 2, 3]
    zero, one, two, three = root.children
    del root.children[1]
    root.children.insert(0, Component("new"))
    assert (zero.index, two.index, three.index, one.index) == (1, 2, 3, 0)
    del root.children[-2:]
    assert two.parent is three.parent is None
    assert names(root.children) == ["new", "0"]


def test_children_may_be_replaced_and_reordered():
    root = tree()
    vise, stop = root.children
    root.children = [stop, vise]
    assert names(root.walk()) == ["Set-up", "Stop", "Vise", "Jaw", "Jaw"]
    root.children[0] = Component("Other")
    assert stop.parent is None
    assert root.children[0].parent is root
    root.children[:] = []
    assert vise.parent is None
    assert len(root.children) == 0


def test_a_component_with_a_parent_is_not_added_elsewhere():
    root, other = tree(), Component("Other")
    with pytest.raises(ValueError) as caught:
        other.children.append(root.children[1])
    assert str(caught.value) == (
        "<Component 'Stop', 'stop.stl', enabled=False> is a child of "
        "<Component 'Set-up', 2 children>: remove() it there, or add its copy()")
    assert list(other.children) == []


def test_a_removed_component_may_be_added_elsewhere():
    root, other = tree(), Component("Other")
    stop = root.children[1]
    stop.remove()
    other.children.append(stop)
    assert stop.parent is other
    assert names(root.children) == ["Vise"]


def test_a_root_cannot_be_removed():
    with pytest.raises(ValueError):
        tree().remove()


def test_no_component_is_below_itself():
    root = tree()
    for below in root.walk():
        with pytest.raises(ValueError):
            below.children.append(root)
    assert names(root.walk()) == ["Set-up", "Vise", "Jaw", "Jaw", "Stop"]


def test_no_component_is_twice_among_the_children():
    root, child = tree(), Component("Child")
    with pytest.raises(ValueError):
        root.children = [child, child]
    assert names(root.children) == ["Vise", "Stop"]
    assert child.parent is None


def test_only_components_are_children():
    with pytest.raises(TypeError) as caught:
        Component().children.append("Jaw")
    assert str(caught.value) == "a child has to be a Component, not str"


def test_a_path_has_the_index_among_the_siblings():
    root = tree()
    assert [component.path for component in root.walk()] == [
        "Set-up", "Set-up/Vise[0]", "Set-up/Vise[0]/Jaw[0]", "Set-up/Vise[0]/Jaw[1]",
        "Set-up/Stop[1]"]


@pytest.mark.parametrize("name", ["a/b", "x[1]", "back\\slash", "line\nend", "", "é[0]/\\x2f"])
def test_every_path_is_found_again(name):
    root = Component(children=[Component(name, children=[Component(name), Component(name)])])
    assert root.path == "(root)"
    for component in list(root.walk())[1:]:
        assert root.find(component.path.partition("/")[2]) is component


def test_escapes_in_a_path():
    root = Component("R", children=[Component("a/b[2]\\")])
    assert root.children[0].path == "R/a\\x2fb\\x5b2]\\\\[0]"


def test_a_number_beyond_unicode_is_no_escape():
    root = Component("R", children=[Component("\U0001f527")])
    assert root.find("\\U0001f527") is root.children[0]
    with pytest.raises(PathError):
        root.find("\\UFFFFFFFF")


def test_an_index_may_be_left_out_if_the_name_is_unique():
    root = tree()
    assert root.find("Vise/Jaw[1]") is root.children[0].children[1]


@pytest.mark.parametrize("path, text", [
    ("Vise/Jaw", "2 components below 'Set-up/Vise[0]' are named 'Jaw'; the first is 'Jaw[0]'"),
    ("Vice", "there is no 'Vice' below 'Set-up'; the nearest is 'Vise[0]'"),
    ("Vise[1]", "there is no 'Vise[1]' below 'Set-up'; the nearest is 'Vise[0]'"),
    ("xyz", "there is no 'xyz' below 'Set-up'; the first is 'Vise[0]'"),
    ("Stop/x", "there is no 'x' below 'Set-up/Stop[1]', which has no children"),
])
def test_a_path_that_names_nothing_is_a_key_error(path, text):
    with pytest.raises(PathError) as caught:
        tree().find(path)
    assert str(caught.value) == text
    assert isinstance(caught.value, KeyError)


@pytest.mark.parametrize("duplicate_of", [
    Component.copy, copy.copy, copy.deepcopy, lambda part: pickle.loads(pickle.dumps(part))])
def test_a_copy_is_a_tree_of_its_own(duplicate_of):
    root = tree()
    duplicate = duplicate_of(root.children[0])
    assert duplicate.parent is None
    assert [c._values() for c in duplicate.walk()] == [c._values()
                                                       for c in root.children[0].walk()]
    duplicate.children[0].name = "Other"
    assert names(root.walk()) == ["Set-up", "Vise", "Jaw", "Jaw", "Stop"]
    duplicate.children.pop()
    assert len(root.children[0].children) == 2


def test_a_component_keeps_its_tree_alive():
    jaw = tree().children[0].children[0]
    gc.collect()
    assert jaw.path == "Set-up/Vise[0]/Jaw[0]"


def test_an_unused_tree_is_collected():
    reference = weakref.ref(tree())
    gc.collect()
    assert reference() is None


def test_a_deep_tree_is_copied_pickled_and_freed():
    root = deepest = Component("0")
    for depth in range(1, 50000):
        below = Component(str(depth))
        # Not append(), which walks up to the root.
        deepest._list().append(below)
        below._parent = deepest
        deepest = below
    assert names(root.copy().walk())[-1] == "49999"
    assert names(pickle.loads(pickle.dumps(root)).walk())[-1] == "49999"
    assert deepest.path.count("/") == 49999
    del root, deepest, below
    gc.collect()


def test_differences_name_the_properties():
    one = tree().children[1]
    other = one.copy()
    assert differences(one, other) == frozenset()
    other.name, other.comment, other.geometry_file, other.enabled = "S", "c", "g", True
    assert differences(one, other) == {"name", "comment", "geometry_file", "enabled"}
    other = one.copy()
    other.translation = (0, 0, 1)
    other.orientation = ((2, 0, 0), (0, 2, 0), (0, 0, 2))
    assert differences(one, other) == {"translation", "vec1", "vec2", "vec3"}
    assert differences(tree(), tree()) == frozenset()


def test_the_representation_is_short():
    root = tree()
    assert repr(root) == "<Component 'Set-up', 2 children>"
    assert repr(root.children[0]) == (
        "<Component 'Vise', translation=(10.0, 0.0, 0.0), 2 children>")
    assert repr(root.children) == (
        "[<Component 'Vise', translation=(10.0, 0.0, 0.0), 2 children>, "
        "<Component 'Stop', 'stop.stl', enabled=False>]")
