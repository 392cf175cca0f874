"""The components of an assembly."""

from collections.abc import MutableSequence
from typing import (Any, Callable, Dict, Iterable, Iterator, List, Optional, Tuple, Union, cast,
                    overload)

from trvfiles._numbers import ORIENTATION, VECTOR, Numbers, packed_orientation, packed_vector
from trvfiles._paths import PathError, escaped, name_and_index, nearest, unescaped
from trvfiles.geometry import IDENTITY_ORIENTATION, Matrix, Orientation, Vector

# The fields of a component: texts, whether it is enabled, and the numbers as bytes.
Values = Tuple[str, str, str, bool, bytes, bytes]
ROOT_INDEX = -1


class Component:
    """A component: its fields, and its children in their order.

    All properties can be set, except world, parent, index and path. A component has one parent at
    most. copy(), the module copy and pickle make copies without a parent. Two components are
    equal if they are the same object; see differences().
    """

    # _index is the last known index among the siblings, or ROOT_INDEX for the root of an assembly.
    # Most components have no children, and no list.
    __slots__ = ("_name", "_comment", "_geometry_file", "_enabled", "_numbers", "_row",
                 "_children", "_parent", "_index", "__weakref__")

    _name: str
    _comment: Optional[str]
    _geometry_file: str
    _enabled: bool
    _numbers: Numbers
    _row: int
    _children: Optional[List["Component"]]
    _parent: Optional["Component"]
    _index: int

    def __init__(self, name: str = "", geometry_file: str = "", *, comment: str = "",
                 enabled: bool = True, translation: Iterable[float] = (0.0, 0.0, 0.0),
                 orientation: Iterable[Iterable[float]] = IDENTITY_ORIENTATION,
                 children: Iterable["Component"] = ()) -> None:
        """A component without a parent, by default at the origin of its parent.

        The arguments are those of the properties.
        """
        self._begin(_checked_text(name, "name"), _checked_text(comment, "comment"),
                    _checked_text(geometry_file, "geometry_file"), bool(enabled),
                    packed_vector(translation), packed_orientation(orientation))
        self.children.extend(children)

    @property
    def name(self) -> str:
        """The display name."""
        return self._name

    @name.setter
    def name(self, name: str) -> None:
        self._name = _checked_text(name, "name")

    @property
    def comment(self) -> str:
        """Free text."""
        if self._comment is None:
            comments = self._numbers.comments
            self._comment = "" if comments is None else comments(self._row)
        return self._comment

    @comment.setter
    def comment(self, comment: str) -> None:
        self._comment = _checked_text(comment, "comment")

    @property
    def geometry_file(self) -> str:
        """The geometry file as the assembly file names it; empty for a group.

        A component with a geometry file is written without its children.
        """
        return self._geometry_file

    @geometry_file.setter
    def geometry_file(self, geometry_file: str) -> None:
        self._geometry_file = _checked_text(geometry_file, "geometry_file")

    @property
    def enabled(self) -> bool:
        """Whether the component and what is below it are placed."""
        return self._enabled

    @enabled.setter
    def enabled(self, enabled: bool) -> None:
        self._enabled = bool(enabled)

    @property
    def translation(self) -> Vector:
        """The origin in the parent's frame: x, y and z in the project's length unit."""
        translations = self._numbers.translations
        return VECTOR.unpack_from(translations, 24 * self._row)  # type: ignore[return-value]

    @translation.setter
    def translation(self, translation: Iterable[float]) -> None:
        self._set_numbers(packed_vector(translation), self._numbers.orientation(self._row))

    @property
    def orientation(self) -> Orientation:
        """The images of the x, y and z axes in the parent's frame; not always unit vectors."""
        o = ORIENTATION.unpack_from(self._numbers.orientations, 72 * self._row)
        return (o[0:3], o[3:6], o[6:9])  # type: ignore[return-value]

    @orientation.setter
    def orientation(self, vectors: Iterable[Iterable[float]]) -> None:
        self._set_numbers(self._numbers.translation(self._row), packed_orientation(vectors))

    @property
    def matrix(self) -> Matrix:
        """The placement in the parent's frame. Setting it sets translation and orientation."""
        return Matrix.of(self.orientation, self.translation)

    @matrix.setter
    def matrix(self, matrix: Matrix) -> None:
        self.orientation, self.translation = matrix.orientation, matrix.translation

    @property
    def world(self) -> Matrix:
        """The placement in the world: ``matrix @ parent.world``."""
        world = self.matrix
        for parent in self.ancestors():
            world = world @ parent.matrix
        return world

    @property
    def parent(self) -> Optional["Component"]:
        """The component to whose children this one belongs; None for a root."""
        return self._parent

    @property
    def children(self) -> "Children":
        """The components directly below this one: a list to read and to change."""
        return Children(self)

    @children.setter
    def children(self, children: Iterable["Component"]) -> None:
        self.children[:] = children

    @property
    def index(self) -> int:
        """The index among the children of the parent, from 0; 0 for a root."""
        if self._parent is None:
            return 0
        siblings = self._parent._list()
        # All siblings get their index at once: the paths of all components would otherwise take
        # quadratic time.
        if not 0 <= self._index < len(siblings) or siblings[self._index] is not self:
            for index, sibling in enumerate(siblings):
                sibling._index = index
        return self._index

    @property
    def path(self) -> str:
        """The path from the root, as in "Set-up/Left vise[1]/Moving jaw[2]".

        The brackets contain the index among the siblings. The root has no index, and is "(root)"
        without a name. In names "/", "[" and "\\" are "\\x2f", "\\x5b" and "\\\\".
        """
        parts = [self, *self.ancestors()]
        root = escaped(parts.pop().name) or "(root)"
        return "/".join([root, *(f"{escaped(part.name)}[{part.index}]"
                                 for part in reversed(parts))])

    def ancestors(self) -> Iterator["Component"]:
        """The parent, its parent, and so on up to the root."""
        parent = self._parent
        while parent is not None:
            yield parent
            parent = parent._parent

    def walk(self) -> Iterator["Component"]:
        """This component and all below it in document order: each one before its children.

        The fields and the children of the component that was returned last may be changed.
        """
        stack = [self]
        pop = stack.pop
        while stack:
            component = pop()
            yield component
            if component._children:
                stack += component._children[::-1]

    def find(self, path: str) -> "Component":
        """The component of a path that begins with a child of this one.

        See the property `path`. An index may be left out after a name that no sibling has. Raises
        PathError.
        """
        component = self
        for part in path.split("/"):
            component = _child(component, part)
        return component

    def remove(self) -> None:
        """Takes the component with all that is below it out of the children of its parent.

        Raises ValueError for a component without a parent.
        """
        if self._parent is None:
            raise ValueError(f"{self!r} has no parent from which it could be removed")
        del self._parent.children[self.index]

    def copy(self) -> "Component":
        """A copy of the component with all that is below it, without a parent."""
        duplicates: Dict[int, Component] = {}
        for component in self.walk():
            duplicate = duplicates[id(component)] = Component.__new__(Component)
            duplicate._begin(*component._values())
            parent = component._parent
            if component is not self and parent is not None:
                duplicate._attach(duplicates[id(parent)])
        return duplicates[id(self)]

    def _begin(self, name: str, comment: str, geometry_file: str, enabled: bool,
               translation: bytes, orientation: bytes) -> None:
        self._name = name
        self._comment = comment
        self._geometry_file = geometry_file
        self._enabled = enabled
        self._set_numbers(translation, orientation)
        self._children = None
        self._parent = None
        self._index = 0

    def _values(self) -> Values:
        numbers, row = self._numbers, self._row
        return (self._name, self.comment, self._geometry_file, self._enabled,
                numbers.translation(row), numbers.orientation(row))

    def _set_numbers(self, translation: bytes, orientation: bytes) -> None:
        # The comment may still be in the numbers before.
        self._comment = self.comment
        self._numbers = Numbers(translation, orientation)
        self._row = 0

    def _list(self) -> List["Component"]:
        if self._children is None:
            self._children = []
        return self._children

    def _attach(self, parent: "Component") -> None:
        self._parent = parent
        parent._list().append(self)

    def __copy__(self) -> "Component":
        return self.copy()

    def __deepcopy__(self, memo: Dict[int, Any]) -> "Component":
        return self.copy()

    # Flat, because pickle is recursive and a tree may be deeper than its limit.
    def __reduce__(self) -> Tuple[Any, ...]:
        numbers: Dict[int, int] = {}
        rows: List[Tuple[int, Values]] = []
        for component in self.walk():
            parent = -1 if component is self else numbers[id(component._parent)]
            numbers[id(component)] = len(rows)
            rows.append((parent, component._values()))
        return _tree_of, (rows,)

    def __repr__(self) -> str:
        details = [repr(self.name)]
        if self.geometry_file:
            details.append(repr(self.geometry_file))
        if not self.enabled:
            details.append("enabled=False")
        if any(self.translation):
            details.append(f"translation={self.translation}")
        if self._children:
            details.append(f"{len(self._children)} children")
        return f"<Component {', '.join(details)}>"


class Children(MutableSequence["Component"]):
    """The children of a component: a list that keeps their parent.

    A component that has a parent, or is the root of an assembly, is rejected with ValueError:
    remove() it there, or add its copy().
    """

    __slots__ = ("_parent",)

    def __init__(self, parent: Component) -> None:
        self._parent = parent

    def __len__(self) -> int:
        return len(self._parent._list())

    @overload
    def __getitem__(self, index: int) -> Component: ...
    @overload
    def __getitem__(self, index: slice) -> List[Component]: ...
    def __getitem__(self, index: Union[int, slice]) -> Union[Component, List[Component]]:
        return self._parent._list()[index]

    def __setitem__(self, index: Union[int, slice],
                    value: Union[Component, Iterable[Component]]) -> None:
        changed = list(self._parent._list())
        if isinstance(index, slice):
            changed[index] = list(cast(Iterable[Component], value))
        else:
            changed[index] = value  # type: ignore[assignment]
        self._replace(changed)

    def __delitem__(self, index: Union[int, slice]) -> None:
        children = self._parent._list()
        for child in children[index] if isinstance(index, slice) else [children[index]]:
            child._parent = None
        del children[index]

    def __iter__(self) -> Iterator[Component]:
        return iter(self._parent._list())

    def insert(self, index: int, value: Component) -> None:
        """Inserts a component before that of an index."""
        self._require_free(value)
        self._parent._list().insert(index, value)
        value._parent = self._parent

    def clear(self) -> None:
        """Removes all children."""
        del self[:]

    def reverse(self) -> None:
        """Reverses the order of the children."""
        self._parent._list().reverse()

    def sort(self, *, key: Callable[[Component], Any], reverse: bool = False) -> None:
        """Sorts the children as list.sort() does."""
        self._parent._list().sort(key=key, reverse=reverse)

    def _replace(self, changed: List[Component]) -> None:
        previous = {id(child) for child in self._parent._list()}
        for child in changed:
            if id(child) not in previous:
                self._require_free(child)
        if len({id(child) for child in changed}) != len(changed):
            raise ValueError("a component cannot be twice among the children")
        for child in self._parent._list():
            child._parent = None
        for child in changed:
            child._parent = self._parent
        self._parent._list()[:] = changed

    def _require_free(self, component: Component) -> None:
        if not isinstance(component, Component):
            raise TypeError(f"a child has to be a Component, not {type(component).__name__}")
        if component._parent is not None:
            raise ValueError(f"{component!r} is a child of {component._parent!r}: "
                             "remove() it there, or add its copy()")
        if component._index == ROOT_INDEX:
            raise ValueError(f"{component!r} is the root of an assembly: add its copy()")
        if component is self._parent or any(component is above
                                            for above in self._parent.ancestors()):
            raise ValueError(f"{component!r} cannot be below itself")

    def __eq__(self, other: object) -> bool:
        return isinstance(other, (Children, list)) and list(self) == list(other)

    __hash__ = None  # type: ignore[assignment]

    def __repr__(self) -> str:
        return repr(self._parent._list())


def _checked_text(text: str, what: str) -> str:
    if not isinstance(text, str):
        raise TypeError(f"{what} has to be a str, not {type(text).__name__}")
    return text


def _tree_of(rows: List[Tuple[int, Values]]) -> Component:
    components: List[Component] = []
    for parent, values in rows:
        component = Component.__new__(Component)
        component._begin(*values)
        if parent >= 0:
            component._attach(components[parent])
        components.append(component)
    return components[0]


def is_root_name(root: Component, part: str) -> bool:
    """Whether the first part of a path is that of this root."""
    return unescaped(part) == (root.name or "(root)")


def _child(parent: Component, part: str) -> Component:
    """The child that a part of a path means; raises PathError."""
    children = parent._list()
    indexed = name_and_index(part)
    if indexed is not None:
        name, index = indexed
        if index < len(children) and children[index].name == name:
            return children[index]
    named = [child for child in children if child.name == unescaped(part)]
    if len(named) == 1:
        return named[0]
    if named:
        raise PathError(f"{len(named)} components below {parent.path!r} are named {part!r}; the "
                        f"first is {_part(named[0])!r}")
    raise PathError(f"there is no {part!r} below {parent.path!r}"
                    f"{nearest(part, [_part(child) for child in children])}")


def _part(component: Component) -> str:
    return f"{escaped(component.name)}[{component.index}]"
