"""Machine context files."""

from ctypes import byref, c_double, c_int32
from dataclasses import dataclass, field
from typing import Any, Tuple, Union

from trvfiles._interface import (ContextNumbers, Handle, PathLike, bytes_argument, call,
                                 call_for_bytes, call_for_texts, created, path_argument, path_text,
                                 runtime_lock, text_argument)
from trvfiles.errors import Note
from trvfiles.geometry import Vector, vector

# In the order of TRVFILES_CONTEXT_...
_TEXTS = ("name", "comment", "machine_name", "machine_position", "surface_group", "clamping_system",
          "reference_axis")
_NUMBERS = ("machine_proximity", "clamping_proximity")


@dataclass
class MachineContext:
    """A machine context. Setting a field checks its type.

    Lengths are in the project's length unit. A file keeps the proximities in single precision with
    six decimals.
    """

    name: str = ""
    """The display name."""
    comment: str = ""
    """Free text."""
    machine_name: str = ""
    """The file of the machine."""
    machine_position: str = ""
    """The axis file of the position on the machine."""
    surface_group: str = ""
    """The group of surfaces that is machined."""
    clamping_system: str = ""
    """The clamping system."""
    reference_axis: str = ""
    """The axis file to which the program origin refers."""
    origin_program: Vector = (0.0, 0.0, 0.0)
    """The program origin: x, y and z, in the project's length unit."""
    machine_proximity: float = 0.0
    """The distance to keep from the machine, in the project's length unit."""
    clamping_proximity: float = 0.0
    """The distance to keep from the clamping system, in the project's length unit."""
    notes: Tuple[Note, ...] = field(default=(), compare=False, repr=False)
    """What was read otherwise than the file says."""

    def __setattr__(self, name: str, value: Any) -> None:
        if name in _TEXTS:
            text_argument(value, name)
        elif name in _NUMBERS:
            value = float(value)
        elif name == "origin_program":
            value = vector(value, name)
        elif name != "notes":
            raise AttributeError(f"a machine context has no field {name!r}")
        super().__setattr__(name, value)

    @classmethod
    def from_bytes(cls, data: Union[bytes, bytearray, memoryview]) -> "MachineContext":
        """Reads a machine context file that has these bytes; raises as read_machine_context()."""
        content = bytes_argument(data)
        with created("context_create") as handle:
            notes = call("context_read_memory", handle, content, len(content))
            return _context_of(handle, notes)

    @property
    def is_null(self) -> bool:
        """Whether all texts are empty and all numbers are zero, within 1e-6."""
        result = c_int32()
        with self._handle() as handle:
            call("context_is_null", handle, byref(result))
        return result.value != 0

    def to_bytes(self) -> bytes:
        """The bytes that write() gives a file."""
        with self._handle() as handle, runtime_lock:
            return call_for_bytes("context_write_memory", handle)

    def write(self, path: PathLike) -> None:
        """Writes the machine context file.

        The complete text replaces the old file in one step: if anything fails, the old file stays
        whole. Raises FileError, or ConfigurationError if the temporary file cannot be opened.
        """
        with self._handle() as handle, runtime_lock:
            call("context_write", handle, path_argument(path), file=path_text(path))

    def _handle(self) -> Handle:
        handle = created("context_create")
        try:
            for number, name in enumerate(_TEXTS):
                call("context_set_text", handle.value, number,
                     text_argument(getattr(self, name), name))
            call("context_set_numbers", handle.value, byref(ContextNumbers(
                origin_program=(c_double * 3)(*self.origin_program),
                machine_proximity=self.machine_proximity,
                clamping_proximity=self.clamping_proximity)))
        except BaseException:
            handle.__exit__()
            raise
        return handle


def read_machine_context(path: PathLike) -> MachineContext:
    """Reads a machine context file.

    The GIL is released. Raises FileError if the file cannot be opened or parsed, ContentError if
    there is a section "machine" without "name" or "position", or "postpro" without
    "origin_program".
    """
    with created("context_create") as handle:
        notes = call("context_read", handle, path_argument(path), file=path_text(path))
        return _context_of(handle, notes)


def _context_of(handle: int, notes: Tuple[Note, ...]) -> MachineContext:
    texts = [call_for_texts("context_get_text", handle, number)[0]
             for number in range(len(_TEXTS))]
    numbers = ContextNumbers()
    call("context_get_numbers", handle, byref(numbers))
    context = MachineContext(**dict(zip(_TEXTS, texts)))  # type: ignore[arg-type]
    context.origin_program = vector(numbers.origin_program, "origin_program")
    context.machine_proximity = numbers.machine_proximity
    context.clamping_proximity = numbers.clamping_proximity
    context.notes = notes
    return context
