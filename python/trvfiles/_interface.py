"""The C interface, trvfiles/c/trvfiles.h, as ctypes calls it.

Objects of this package hold values: a handle lives for one operation only.
"""

import ctypes
import os
import threading
from ctypes import POINTER, byref, c_char_p, c_double, c_int32, c_size_t, c_uint8, c_uint32
from ctypes import c_uint64, c_void_p
from typing import Any, Dict, List, Optional, Tuple, Type, Union

from trvfiles._library import library
from trvfiles.errors import Note, Status, error_class

SUCCESS = 1
NO_INDEX = c_size_t(-1).value

# The runtime of the library is for one thread at a time. The handlers of messages are called while
# their thread holds the lock, and may use the runtime themselves.
runtime_lock = threading.RLock()

PathLike = Union[str, bytes, "os.PathLike[str]", "os.PathLike[bytes]"]


class SizedStructure(ctypes.Structure):
    """A structure whose first member is its size."""

    size: int

    def __init__(self, **values: Any) -> None:
        super().__init__(size=ctypes.sizeof(type(self)), **values)


class FaultValues(SizedStructure):
    _fields_ = [("size", c_size_t), ("reason", c_void_p), ("reason_length", c_size_t),
                ("line", c_int32), ("column", c_int32), ("system_error", c_int32),
                ("cause", c_int32), ("note_count", c_size_t), ("subject", c_void_p),
                ("subject_length", c_size_t)]


class NoteValues(SizedStructure):
    _fields_ = [("size", c_size_t), ("kind", c_int32), ("line", c_int32), ("column", c_int32),
                ("count", c_int32), ("subject", c_void_p), ("subject_length", c_size_t),
                ("text", c_void_p), ("text_length", c_size_t), ("attribute", c_void_p),
                ("attribute_length", c_size_t), ("value", c_void_p), ("value_length", c_size_t),
                ("parent", c_void_p), ("parent_length", c_size_t), ("expected", c_void_p),
                ("expected_length", c_size_t)]


class AxisValues(SizedStructure):
    _fields_ = [("size", c_size_t), ("matrix", c_double * 16), ("tag_count", c_int32),
                ("tags", c_int32 * 3)]


class ContextNumbers(SizedStructure):
    _fields_ = [("size", c_size_t), ("origin_program", c_double * 3),
                ("machine_proximity", c_double), ("clamping_proximity", c_double)]


class PlacementTable(SizedStructure):
    _fields_ = [("size", c_size_t), ("count", c_size_t), ("component", c_void_p),
                ("world", c_void_p), ("geometry", c_void_p), ("text", c_void_p),
                ("text_length", c_size_t)]


class ComponentTable(SizedStructure):
    _fields_ = [("size", c_size_t), ("count", c_size_t), ("parent", c_void_p),
                ("subtree_size", c_void_p), ("enabled", c_void_p), ("translation", c_void_p),
                ("orientation", c_void_p), ("world", c_void_p), ("name", c_void_p),
                ("comment", c_void_p), ("geometry", c_void_p), ("text", c_void_p),
                ("text_length", c_size_t)]


MessageHandler = ctypes.CFUNCTYPE(None, c_void_p, c_int32, c_char_p)

_HANDLE = c_uint64
_SIZE_RESULT = POINTER(c_size_t)
_INT_RESULT = POINTER(c_int32)
_HANDLE_RESULT = POINTER(_HANDLE)

# The arguments of each function without its last one, the fault.
_ARGUMENTS: Dict[str, Tuple[Any, ...]] = {
    "release": (_HANDLE,),
    "live_handles": (_SIZE_RESULT,),
    "texts_create": (_HANDLE_RESULT,),
    "texts_count": (_HANDLE, _SIZE_RESULT),
    "texts_get": (_HANDLE, c_size_t, POINTER(c_void_p), _SIZE_RESULT),
    "axis_read": (c_char_p, POINTER(AxisValues)),
    "axis_read_memory": (c_char_p, c_size_t, POINTER(AxisValues)),
    "axis_write": (c_char_p, POINTER(AxisValues)),
    "axis_write_memory": (POINTER(AxisValues), _HANDLE),
    "context_create": (_HANDLE_RESULT,),
    "context_read": (_HANDLE, c_char_p),
    "context_read_memory": (_HANDLE, c_char_p, c_size_t),
    "context_write": (_HANDLE, c_char_p),
    "context_write_memory": (_HANDLE, _HANDLE),
    "context_get_text": (_HANDLE, c_int32, _HANDLE),
    "context_set_text": (_HANDLE, c_int32, c_char_p),
    "context_get_numbers": (_HANDLE, POINTER(ContextNumbers)),
    "context_set_numbers": (_HANDLE, POINTER(ContextNumbers)),
    "context_is_null": (_HANDLE, _INT_RESULT),
    "catalogue_directory": (_HANDLE,),
    "catalogue_list": (c_char_p, _HANDLE),
    "catalogue_choose_default": (POINTER(c_char_p), c_size_t, _SIZE_RESULT, _INT_RESULT),
    "catalogue_create_default": (c_char_p, c_int32, _HANDLE),
    "catalogue_create": (c_char_p, c_char_p, c_char_p, c_char_p, _HANDLE),
    "assembly_create": (_HANDLE_RESULT,),
    "assembly_read": (_HANDLE, c_char_p),
    "assembly_read_memory": (_HANDLE, c_char_p, c_size_t),
    "assembly_write": (_HANDLE, c_char_p),
    "assembly_write_memory": (_HANDLE, _HANDLE),
    "assembly_get_dimension": (_HANDLE, POINTER(c_double)),
    "assembly_set_dimension": (_HANDLE, POINTER(c_double)),
    "assembly_equal": (_HANDLE, _HANDLE, _INT_RESULT),
    "assembly_flatten": (_HANDLE, POINTER(c_double), _HANDLE_RESULT),
    "placements_get": (_HANDLE, POINTER(PlacementTable)),
    "component_compare": (_HANDLE, c_size_t, _HANDLE, c_size_t, POINTER(c_uint32)),
    "assembly_components": (_HANDLE, _HANDLE_RESULT),
    "components_get": (_HANDLE, POINTER(ComponentTable)),
    "assembly_set_components": (_HANDLE, POINTER(ComponentTable)),
    "process_variable_set": (c_char_p, c_char_p),
    "install_root": (c_int32, _HANDLE),
    "variable_get": (c_int32, c_char_p, _HANDLE),
    "variable_definitions": (c_int32, c_char_p, _HANDLE),
    "variable_list": (_HANDLE,),
    "expand": (c_char_p, c_int32, _HANDLE),
    "search": (c_char_p, c_char_p, _HANDLE),
    "channel_set": (c_int32, MessageHandler, c_void_p),
    "channel_set_output": (c_int32, c_int32),
}


def _declare(name: str, result: Any, arguments: Tuple[Any, ...]) -> Any:
    try:
        function = library["trvfiles_" + name]
    except AttributeError:
        raise ImportError(f"{library._name} has no trvfiles_{name}: it is not the library of this "
                          "version of the package") from None
    function.restype = result
    function.argtypes = arguments
    return function


_functions = {name: _declare(name, c_int32, arguments + (_HANDLE,))
              for name, arguments in _ARGUMENTS.items()}
_fault_create = _declare("fault_create", c_int32, (_HANDLE_RESULT,))
_fault_get = _declare("fault_get", c_int32, (_HANDLE, POINTER(FaultValues)))
_fault_get_note = _declare("fault_get_note", c_int32, (_HANDLE, c_size_t, POINTER(NoteValues)))
_note_kind_name = _declare("note_kind_name", c_char_p, (c_int32,))
_fault_cause_name = _declare("fault_cause_name", c_char_p, (c_int32,))
_status_text = _declare("status_text", c_char_p, (c_int32,))
_version_text = _declare("version_text", c_char_p, ())


def version() -> str:
    """The version of the loaded library."""
    return str(_version_text().decode())


class Handle:
    """An object of the library, released at the end of a ``with``."""

    def __init__(self, value: int) -> None:
        self.value = value

    def __enter__(self) -> int:
        return self.value

    def __exit__(self, *_: object) -> None:
        _functions["release"](self.value, 0)


def created(function: str, *arguments: Any) -> Handle:
    """What a function creates; its last argument takes it."""
    handle = _HANDLE()
    call(function, *arguments, byref(handle))
    return Handle(handle.value)


def _new_fault() -> Handle:
    handle = _HANDLE()
    status = _fault_create(byref(handle))
    if status != SUCCESS:
        raise MemoryError(_status_text(status).decode())
    return Handle(handle.value)


def _text(address: Optional[int], length: int) -> str:
    return ctypes.string_at(address, length).decode() if address else ""


def _note(fault: int, index: int) -> Note:
    values = NoteValues()
    _fault_get_note(fault, index, byref(values))
    return Note(_note_kind_name(values.kind).decode(), values.line, values.column,
                _text(values.subject, values.subject_length),
                _text(values.text, values.text_length),
                _text(values.attribute, values.attribute_length),
                _text(values.value, values.value_length),
                _text(values.parent, values.parent_length),
                _text(values.expected, values.expected_length), values.count)


def call(function: str, *arguments: Any, file: Optional[str] = None) -> Tuple[Note, ...]:
    """Calls a function, and returns its notes.

    Raises an exception of trvfiles.errors for another status than success.

    :param file: the file as the caller names it, for the exception
    """
    with _new_fault() as fault:
        status = _functions[function](*arguments, fault)
        values = FaultValues()
        _fault_get(fault, byref(values))
        notes = tuple(_note(fault, index) for index in range(values.note_count))
        if status != SUCCESS:
            kind = error_class(Status(status), values.system_error)
            raise kind(Status(status), _text(values.reason, values.reason_length), file,
                       values.line, values.column, values.system_error, notes,
                       _fault_cause_name(values.cause).decode(),
                       _text(values.subject, values.subject_length))
        return notes


def _texts_of(handle: int) -> List[bytes]:
    count = c_size_t()
    call("texts_count", handle, byref(count))
    result = []
    for index in range(count.value):
        text = c_void_p()
        length = c_size_t()
        call("texts_get", handle, index, byref(text), byref(length))
        result.append(ctypes.string_at(text, length.value))
    return result


def call_for_texts(function: str, *arguments: Any, file: Optional[str] = None) -> List[str]:
    """The texts that a function gives its last argument."""
    with created("texts_create") as texts:
        call(function, *arguments, texts, file=file)
        return [text.decode() for text in _texts_of(texts)]


def call_for_bytes(function: str, *arguments: Any) -> bytes:
    """The bytes of a file that a function gives its last argument."""
    with created("texts_create") as texts:
        call(function, *arguments, texts)
        return _texts_of(texts)[0]


def text_argument(text: str, what: str) -> bytes:
    """A text for the library, in which a zero byte would be the end.

    Raises TypeError or ValueError with the name of what it is.
    """
    if not isinstance(text, str):
        raise TypeError(f"{what} has to be a str, not {type(text).__name__}")
    if "\0" in text:
        raise ValueError(f"{what} contains a null character")
    try:
        return text.encode()
    except UnicodeEncodeError:
        raise ValueError(f"{what} is not Unicode: {text!r}") from None


def path_text(path: PathLike) -> str:
    """A path as a str."""
    return os.fsdecode(path)


def path_argument(path: PathLike) -> bytes:
    """A path for the library; raises as text_argument()."""
    return text_argument(path_text(path), "a path")


def bytes_argument(data: Union[bytes, bytearray, memoryview]) -> bytes:
    """The bytes of a file; raises TypeError for a str."""
    if isinstance(data, str):
        raise TypeError("the bytes of a file have to be bytes, not str")
    return bytes(data)
