"""The numbers of components as bytes."""

import struct
from typing import Callable, Iterable, Optional

from trvfiles.geometry import orientation, vector

VECTOR = struct.Struct("3d")
ORIENTATION = struct.Struct("9d")


class Numbers:
    """The translations and orientations of components, as doubles one after the other.

    It also has the comments that no one has asked for yet. Not changed: the components of a file
    share one, because objects of their own would take a third of the time of reading.
    """

    __slots__ = ("translations", "orientations", "comments")

    def __init__(self, translations: bytes, orientations: bytes,
                 comments: Optional[Callable[[int], str]] = None) -> None:
        self.translations = translations
        self.orientations = orientations
        self.comments = comments

    def translation(self, row: int) -> bytes:
        """Three doubles."""
        return self.translations[24 * row:24 * row + 24]

    def orientation(self, row: int) -> bytes:
        """Nine doubles."""
        return self.orientations[72 * row:72 * row + 72]


def packed_vector(values: Iterable[float]) -> bytes:
    return VECTOR.pack(*vector(values, "translation"))


def packed_orientation(vectors: Iterable[Iterable[float]]) -> bytes:
    x, y, z = orientation(vectors, "orientation")
    return ORIENTATION.pack(*x, *y, *z)
