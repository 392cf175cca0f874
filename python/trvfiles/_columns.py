"""The transfer of whole trees of components, as the arrays of trvfiles_component_table.

A call for each component would take most of the time of reading.
"""

import ctypes
import gc
import struct
from array import array
from contextlib import contextmanager
from itertools import accumulate, islice
from typing import Any, Callable, Dict, Iterator, List, Tuple

from trvfiles._interface import NO_INDEX, ComponentTable, text_argument
from trvfiles._numbers import Numbers
from trvfiles.component import Component


def _memory(address: int, size: int) -> Any:
    """The bytes at an address, which are not copied."""
    return (ctypes.c_char * size).from_address(address) if size else b""


def sizes(address: int, count: int) -> "array[int]":
    """So many numbers of the type size_t at an address."""
    return array("Q", bytes(_memory(address, 8 * count)))


def tuples(address: int, count: int, code: str) -> Iterator[Tuple[Any, ...]]:
    """So many tuples of a format of the module struct at an address."""
    return struct.iter_unpack(code, _memory(address, count * struct.calcsize(code)))


class Texts:
    """Texts in UTF-8 one after the other; a column of them has ``count`` + 1 offsets."""

    def __init__(self, address: int, length: int, count: int) -> None:
        self._data = ctypes.string_at(address, length) if length else b""
        self._ascii = self._data.decode() if self._data.isascii() else None
        self._count = count

    def column(self, address: int) -> List[str]:
        """All texts of a column."""
        offsets = sizes(address, self._count + 1)
        pairs = zip(offsets, islice(offsets, 1, None))
        if self._ascii is not None:
            text = self._ascii
            return [text[begin:end] for begin, end in pairs]
        return [self._data[begin:end].decode() for begin, end in pairs]

    def lazy_column(self, address: int) -> Callable[[int], str]:
        """A function that gives one text of a column."""
        offsets = sizes(address, self._count + 1)
        return lambda row: self._data[offsets[row]:offsets[row + 1]].decode()


@contextmanager
def no_collection() -> Iterator[None]:
    """Without collections of garbage, which take three times as long as 100,000 new components."""
    was_enabled = gc.isenabled()
    gc.disable()
    try:
        yield
    finally:
        if was_enabled:
            gc.enable()


def components_of(table: ComponentTable) -> List[Component]:
    """The components of a table in document order."""
    count = table.count
    texts = Texts(table.text, table.text_length, count)
    columns: Iterator[Any] = zip(
        sizes(table.parent, count),
        texts.column(table.name), texts.column(table.geometry),
        map(bool, bytes(_memory(table.enabled, count))), range(count))
    numbers = Numbers(bytes(_memory(table.translation, 24 * count)),
                      bytes(_memory(table.orientation, 72 * count)),
                      texts.lazy_column(table.comment))
    components: List[Component] = []
    new = Component.__new__
    # Calls of Component._begin() and _attach() would take half of the time.
    for parent, name, geometry, enabled, row in columns:
        component = new(Component)
        component._name = name
        component._comment = None
        component._geometry_file = geometry
        component._enabled = enabled
        component._numbers = numbers
        component._row = row
        component._children = None
        component._index = 0
        if components:
            above = components[parent]
            component._parent = above
            if above._children is None:
                above._children = [component]
            else:
                above._children.append(component)
        else:
            component._parent = None
        components.append(component)
    return components


class Columns:
    """A tree of components as a table for the library, which points to the arrays in it."""

    def __init__(self, root: Component) -> None:
        self.components = list(root.walk())
        names, comments, geometries, enabled, translations, orientations = zip(
            *(component._values() for component in self.components))
        self._text = bytearray()
        self._columns: List[Any] = []
        self.table = ComponentTable(
            count=len(self.components),
            parent=self._keep(array("Q", self._parents(root))),
            enabled=self._keep(array("B", enabled)),
            translation=self._keep(array("d", b"".join(translations))),
            orientation=self._keep(array("d", b"".join(orientations))),
            name=self._keep_texts(names, "name"),
            comment=self._keep_texts(comments, "comment"),
            geometry=self._keep_texts(geometries, "geometry_file"))
        self.table.text_length = len(self._text)
        self.table.text = self._keep(array("B", self._text or b"\0"))

    def _parents(self, root: Component) -> Iterator[int]:
        numbers: Dict[int, int] = {}
        for number, component in enumerate(self.components):
            numbers[id(component)] = number
            yield NO_INDEX if component is root else numbers[id(component._parent)]

    def _keep(self, column: Any) -> int:
        self._columns.append(column)
        return int(column.buffer_info()[0])

    def _keep_texts(self, values: Tuple[str, ...], what: str) -> int:
        encoded = [text_argument(value, what) for value in values]
        offsets = array("Q", accumulate(map(len, encoded), initial=len(self._text)))
        self._text += b"".join(encoded)
        return self._keep(offsets)
