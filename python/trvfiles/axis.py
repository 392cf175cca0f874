"""Axis files."""

from ctypes import byref, c_double, c_int32
from dataclasses import dataclass, field
from typing import Any, Callable, Dict, Tuple, Union

from trvfiles._interface import (AxisValues, PathLike, bytes_argument, call, call_for_bytes,
                                 path_argument, path_text)
from trvfiles.geometry import Matrix, matrix_of


@dataclass
class Axis:
    """What an axis file holds: a placement and its tags."""

    matrix: Matrix = field(default_factory=Matrix)
    """The placement. The axes are the inverse of the block in the file."""
    tags: Tuple[int, ...] = ()
    """No tag, or up to three of them that are not negative."""

    def __setattr__(self, name: str, value: Any) -> None:
        if name not in _CONVERTED:
            raise AttributeError(f"an axis has no field {name!r}")
        super().__setattr__(name, _CONVERTED[name](value))

    @classmethod
    def from_bytes(cls, data: Union[bytes, bytearray, memoryview]) -> "Axis":
        """Reads an axis file that has these bytes; raises ContentError."""
        content = bytes_argument(data)
        values = AxisValues()
        call("axis_read_memory", content, len(content), byref(values))
        return _axis_of(values)

    def to_bytes(self) -> bytes:
        """The bytes that write() gives a file."""
        return call_for_bytes("axis_write_memory", byref(self._values()))

    def write(self, path: PathLike) -> None:
        """Writes the axis file over an existing one: the placement and its inverse.

        The numbers have six decimals. Raises FileError, and ValueError if there are one or two
        tags.
        """
        call("axis_write", path_argument(path), byref(self._values()), file=path_text(path))

    def _values(self) -> AxisValues:
        if len(self.tags) not in (0, 3):
            raise ValueError(f"an axis file is written with 0 or 3 tags, not {len(self.tags)}")
        return AxisValues(matrix=(c_double * 16)(*self.matrix.flat()), tag_count=len(self.tags),
                          tags=(c_int32 * 3)(*self.tags))


def read_axis(path: PathLike) -> Axis:
    """Reads an axis file.

    The GIL is released. Raises FileError, or ContentError if one of the four matrix lines is
    missing or does not hold four numbers.
    """
    values = AxisValues()
    call("axis_read", path_argument(path), byref(values), file=path_text(path))
    return _axis_of(values)


def _axis_of(values: AxisValues) -> Axis:
    return Axis(matrix_of(values.matrix), tuple(values.tags[:values.tag_count]))


def _tags(values: Any) -> Tuple[int, ...]:
    tags = tuple(values)
    if len(tags) > 3:
        raise ValueError(f"there are at most 3 tags, not {len(tags)}")
    if not all(isinstance(tag, int) and 0 <= tag < 2**31 for tag in tags):
        raise ValueError(f"a tag has to be an int from 0 up to 2147483647: {tags!r}")
    return tags


_CONVERTED: Dict[str, Callable[[Any], Any]] = {"matrix": Matrix, "tags": _tags}
