"""Assembly files."""

from ctypes import byref, c_double, c_int32, c_size_t, c_uint32
from typing import Any, FrozenSet, Iterable, Iterator, List, NamedTuple, Optional, Tuple, Union

from trvfiles._columns import Columns, Texts, components_of, no_collection, sizes, tuples
from trvfiles._interface import (ComponentTable, Handle, PathLike, PlacementTable, bytes_argument,
                                 call, call_for_bytes, created, path_argument, path_text)
from trvfiles._paths import PathError
from trvfiles.component import ROOT_INDEX, Component, is_root_name
from trvfiles.errors import Note
from trvfiles.geometry import Matrix, Vector, matrix_of, vector

# The bits of TRVFILES_DIFFERENT_..., the lowest first.
_DIFFERENCES = ("name", "comment", "geometry_file", "enabled", "translation", "vec1", "vec2",
                "vec3")


class Placement(NamedTuple):
    """A geometry file in its place in the world."""

    component: Component
    """The component that names the file."""
    geometry_file: str
    """The file as the component names it."""
    matrix: Matrix
    """The placement in the world."""

    @property
    def translation(self) -> Vector:
        """The origin in the world: x, y and z in the project's length unit."""
        return self.matrix.translation


class Assembly:
    """An assembly: its overall size and a tree of components.

    Iterating over it gives all components in document order; len() is their number. ``==`` compares
    as the library does: numbers with a tolerance of 1e-6, and vec3 not at all.
    """

    __slots__ = ("_dimension", "_root", "notes", "__weakref__")

    notes: Tuple[Note, ...]
    """What was read otherwise than the file says."""

    def __init__(self, root: Optional[Component] = None,
                 dimension: Iterable[float] = (0.0, 0.0, 0.0)) -> None:
        """An assembly of a component without a parent; by default of an empty one."""
        self.dimension = dimension  # type: ignore[assignment]
        self._root = _free_root(Component() if root is None else root)
        self.notes = ()

    @classmethod
    def from_bytes(cls, data: Union[bytes, bytearray, memoryview]) -> "Assembly":
        """Reads an assembly file that has these bytes; raises as read_assembly()."""
        content = bytes_argument(data)
        with created("assembly_create") as handle:
            notes = call("assembly_read_memory", handle, content, len(content))
            return _assembly_of(handle, notes)

    @property
    def dimension(self) -> Vector:
        """The overall size along x, y and z, in the project's length unit."""
        return self._dimension

    @dimension.setter
    def dimension(self, dimension: Iterable[float]) -> None:
        self._dimension = vector(dimension, "dimension")

    @property
    def root(self) -> Component:
        """The root component. A new one must not have a parent."""
        return self._root

    @root.setter
    def root(self, root: Component) -> None:
        if root is not self._root:
            replaced, self._root = self._root, _free_root(root)
            replaced._index = 0

    def __iter__(self) -> Iterator[Component]:
        return self._root.walk()

    def __len__(self) -> int:
        return sum(1 for _ in self)

    def __bool__(self) -> bool:
        return True

    def find(self, path: str) -> Component:
        """The component of a path that begins with the root, as in "Set-up/Left vise[1]".

        See Component.path. Raises PathError, a KeyError.
        """
        first, separator, rest = path.partition("/")
        if not is_root_name(self._root, first):
            raise PathError(f"there is no root {first!r}; the root is {self._root.path!r}")
        return self._root.find(rest) if separator else self._root

    __getitem__ = find

    def placements(self, parent: Optional[Matrix] = None) -> List[Placement]:
        """The geometry files that are placed in the world, in document order.

        A component that is not enabled is left out with all that is below it.

        :param parent: the placement of the root's parent; None for the identity
        """
        outer = None if parent is None else (c_double * 16)(*Matrix(parent).flat())
        columns = Columns(self._root)
        with self._handle(columns) as handle, \
                created("assembly_flatten", handle, outer) as placements:
            table = PlacementTable()
            call("placements_get", placements, byref(table))
            return _placements_of(table, columns.components)

    def to_bytes(self) -> bytes:
        """The bytes that write() gives a file; raises ContentError as write()."""
        with self._handle() as handle:
            return call_for_bytes("assembly_write_memory", handle)

    def write(self, path: PathLike) -> None:
        """Writes the assembly file over an existing one.

        A component with a geometry file is written without its children. Raises ContentError if a
        component has neither a geometry file nor children, if the tree is deeper than 999
        components, or if a text holds U+FFFE or U+FFFF; then the file is not touched. Raises
        FileError if the file cannot be written.
        """
        with self._handle() as handle:
            call("assembly_write", handle, path_argument(path), file=path_text(path))

    def copy(self) -> "Assembly":
        """A copy with copies of all components."""
        duplicate = Assembly(self._root.copy(), self._dimension)
        duplicate.notes = self.notes
        return duplicate

    def _handle(self, columns: Optional[Columns] = None) -> Handle:
        handle = created("assembly_create")
        try:
            filled = columns or Columns(self._root)
            call("assembly_set_components", handle.value, byref(filled.table))
            call("assembly_set_dimension", handle.value, (c_double * 3)(*self._dimension))
        except BaseException:
            handle.__exit__()
            raise
        return handle

    def __eq__(self, other: object) -> bool:
        if not isinstance(other, Assembly):
            return NotImplemented
        result = c_int32()
        with self._handle() as one, other._handle() as two:
            call("assembly_equal", one, two, byref(result))
        return result.value != 0

    __hash__ = None  # type: ignore[assignment]

    def __copy__(self) -> "Assembly":
        return self.copy()

    def __deepcopy__(self, memo: Any) -> "Assembly":
        return self.copy()

    def __reduce__(self) -> Tuple[Any, ...]:
        return _restored, (self._root, self._dimension, self.notes)

    def __repr__(self) -> str:
        return f"<Assembly {self._root.name!r}, {len(self)} components>"


def read_assembly(path: PathLike) -> Assembly:
    """Reads an assembly file.

    The GIL is released. Several threads may read at the same time. Raises FileError if the file
    cannot be opened, ContentError if something that it needs is missing or malformed,
    StructureError if its root element or its root component is wrong.
    """
    with created("assembly_create") as handle:
        notes = call("assembly_read", handle, path_argument(path), file=path_text(path))
        return _assembly_of(handle, notes)


def differences(one: Component, other: Component) -> FrozenSet[str]:
    """What differs between two components without their children, with the library's tolerances.

    The set holds the names of properties, and "vec1", "vec2", "vec3" for an orientation.
    """
    bits = c_uint32()
    with _lone(one)._handle() as first, _lone(other)._handle() as second:
        call("component_compare", first, c_size_t(0), second, c_size_t(0), byref(bits))
    return frozenset(name for bit, name in enumerate(_DIFFERENCES) if bits.value >> bit & 1)


def _lone(component: Component) -> Assembly:
    lone = Component()
    lone._begin(*component._values())
    return Assembly(lone)


def _free_root(root: Component) -> Component:
    if not isinstance(root, Component):
        raise TypeError(f"root has to be a Component, not {type(root).__name__}")
    if root.parent is not None or root._index == ROOT_INDEX:
        raise ValueError(f"{root!r} belongs to an assembly: use its copy()")
    root._index = ROOT_INDEX
    return root


def _restored(root: Component, dimension: Vector, notes: Tuple[Note, ...]) -> Assembly:
    assembly = Assembly(root, dimension)
    assembly.notes = notes
    return assembly


def _assembly_of(handle: int, notes: Tuple[Note, ...]) -> Assembly:
    dimension = (c_double * 3)()
    call("assembly_get_dimension", handle, dimension)
    with created("assembly_components", handle) as components, no_collection():
        table = ComponentTable()
        call("components_get", components, byref(table))
        root = components_of(table)[0]
    return _restored(root, vector(dimension, "dimension"), notes)


def _placements_of(table: PlacementTable, components: List[Component]) -> List[Placement]:
    count = table.count
    files = Texts(table.text, table.text_length, count).column(table.geometry)
    return [Placement(components[index], file, matrix_of(world))
            for index, file, world in zip(sizes(table.component, count), files,
                                          tuples(table.world, count, "16d"))]
