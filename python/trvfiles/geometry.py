"""Vectors and placements.

Lengths are in the project's length unit. Placements are for row vectors: a point p of a component
is at p * matrix in the world.
"""

from typing import Any, Iterable, Tuple

Vector = Tuple[float, float, float]
"""x, y and z."""
Orientation = Tuple[Vector, Vector, Vector]
"""The images of the x, y and z axes."""
Row = Tuple[float, float, float, float]

IDENTITY_ORIENTATION: Orientation = ((1.0, 0.0, 0.0), (0.0, 1.0, 0.0), (0.0, 0.0, 1.0))


def numbers(values: Iterable[float], count: int, what: str) -> Tuple[float, ...]:
    """So many numbers as floats.

    Raises ValueError for another number of them, TypeError if one is not a number.
    """
    try:
        converted = tuple(float(value) for value in values)
    except TypeError:
        raise TypeError(f"{what} has to be {count} numbers, not {values!r}") from None
    if len(converted) != count:
        raise ValueError(f"{what} has to be {count} numbers, not {len(converted)}")
    return converted


def vector(values: Iterable[float], what: str) -> Vector:
    """Three numbers as floats; raises as numbers()."""
    x, y, z = numbers(values, 3, what)
    return (x, y, z)


def orientation(values: Iterable[Iterable[float]], what: str) -> Orientation:
    """Three vectors; raises as numbers()."""
    rows = tuple(vector(row, f"each vector of the {what}") for row in values)
    if len(rows) != 3:
        raise ValueError(f"{what} has to be 3 vectors, not {len(rows)}")
    return rows  # type: ignore[return-value]


class Matrix(Tuple[Row, Row, Row, Row]):
    """A placement: four rows of four numbers, as nested tuples.

    The rows 0 to 2 are the images of the x, y and z axes, row 3 is the translation in the
    project's length unit. The last column is 0, 0, 0, 1. numpy.asarray(matrix) is a 4x4 array.
    """

    __slots__ = ()

    def __new__(cls, rows: Iterable[Iterable[float]] = (
            (1, 0, 0, 0), (0, 1, 0, 0), (0, 0, 1, 0), (0, 0, 0, 1))) -> "Matrix":
        """Takes four rows of four numbers; without them it is the identity."""
        converted = tuple(numbers(row, 4, "each row of a matrix") for row in rows)
        if len(converted) != 4:
            raise ValueError(f"a matrix has to be 4 rows, not {len(converted)}")
        return super().__new__(cls, converted)  # type: ignore[arg-type]

    @classmethod
    def of(cls, orientation: Orientation, translation: Vector) -> "Matrix":
        """The placement with these images of the axes and this translation."""
        return cls([(*axis, 0.0) for axis in orientation] + [(*translation, 1.0)])

    @property
    def translation(self) -> Vector:
        """x, y and z of the origin, in the project's length unit."""
        return self[3][:3]

    @property
    def orientation(self) -> Orientation:
        """The images of the x, y and z axes."""
        return (self[0][:3], self[1][:3], self[2][:3])

    def flat(self) -> Tuple[float, ...]:
        """The sixteen numbers, row by row."""
        return self[0] + self[1] + self[2] + self[3]

    def __matmul__(self, parent: "Matrix") -> "Matrix":
        """``local @ parent``: the placement in the frame to which the parent refers."""
        if not isinstance(parent, Matrix):
            return NotImplemented
        columns = tuple(zip(*parent))
        return Matrix([[sum(a * b for a, b in zip(row, column)) for column in columns]
                       for row in self])

    def __array__(self, dtype: Any = None, copy: Any = None) -> Any:
        """A new 4x4 array of numpy."""
        import numpy
        return numpy.array(tuple(self), dtype=dtype)

    def __repr__(self) -> str:
        return f"Matrix({super().__repr__()})"


def matrix_of(flat: Iterable[float]) -> Matrix:
    """The placement of sixteen numbers."""
    sixteen = tuple(flat)
    return Matrix(sixteen[i:i + 4] for i in range(0, 16, 4))
