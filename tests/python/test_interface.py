"""The declarations for ctypes are those of the header."""

import ctypes
import re

import pytest

from trvfiles import _interface

TYPES = {
    "trvfiles_handle": ctypes.c_uint64, "trvfiles_fault": ctypes.c_uint64,
    "trvfiles_texts": ctypes.c_uint64, "trvfiles_context": ctypes.c_uint64,
    "trvfiles_assembly": ctypes.c_uint64, "trvfiles_components": ctypes.c_uint64,
    "trvfiles_placements": ctypes.c_uint64, "trvfiles_messages": ctypes.c_uint64,
    "size_t": ctypes.c_size_t, "int32_t": ctypes.c_int32, "uint32_t": ctypes.c_uint32,
    "double": ctypes.c_double, "trvfiles_message_handler": _interface.MessageHandler,
    "char": ctypes.c_char, "void": None,
    "trvfiles_axis": _interface.AxisValues, "trvfiles_note": _interface.NoteValues,
    "trvfiles_fault_values": _interface.FaultValues,
    "trvfiles_context_numbers": _interface.ContextNumbers,
    "trvfiles_placement_table": _interface.PlacementTable,
    "trvfiles_component_table": _interface.ComponentTable,
}
STRUCTURES = [name for name, type_ in TYPES.items()
              if isinstance(type_, type) and issubclass(type_, ctypes.Structure)]


def header(repository):
    text = (repository / "trvfiles/c/trvfiles.h").read_text(encoding="utf-8")
    return re.sub(r"/\*.*?\*/", "", text, flags=re.DOTALL)


def ctypes_of(declaration):
    """The types that ctypes may have for a parameter, such as "const char* path"."""
    base, stars = re.fullmatch(r"(?:const )?(\w+)((?: const)?\*(?: const)?\*?)? ?\w*",
                               declaration.strip()).groups()
    depth = (stars or "").count("*")
    if depth == 0:
        return [TYPES[base]]
    # Bytes and texts are both passed as bytes.
    if base in ("char", "void"):
        single = [ctypes.c_char_p, ctypes.c_void_p]
        return single if depth == 1 else [ctypes.POINTER(one) for one in single]
    assert depth == 1
    return [ctypes.POINTER(TYPES[base])]


def functions(repository):
    found = re.findall(r"TRVFILES_API ([\w ]+\*?) (trvfiles_\w+)\(([^)]*)\);", header(repository))
    return {name: (result, " ".join(parameters.split()).split(", "))
            for result, name, parameters in found}


@pytest.mark.parametrize("name", _interface._ARGUMENTS)
def test_the_parameters_are_those_of_the_header(repository, name):
    result, parameters = functions(repository)["trvfiles_" + name]
    declared = _interface._functions[name].argtypes
    assert result == "int32_t"
    assert parameters[-1] == "trvfiles_fault fault"
    assert len(declared) == len(parameters)
    for declared_type, parameter in zip(declared, parameters):
        assert declared_type in ctypes_of(parameter), parameter


@pytest.mark.parametrize("name", STRUCTURES)
def test_the_members_are_those_of_the_header(repository, name):
    body = re.search(r"typedef struct %s \{([^}]*)\}" % name, header(repository))[1]
    members = []
    for line in filter(None, (line.strip() for line in body.split(";"))):
        type_, member, count = re.fullmatch(r"(.*?)\s*(\w+)(?:\[(\d+)\])?", line).groups()
        size = ctypes.sizeof(ctypes.c_void_p if "*" in type_ else TYPES[type_])
        members.append((member, size * int(count or 1)))
    declared = [(member, ctypes.sizeof(type_)) for member, type_ in TYPES[name]._fields_]
    assert declared == members


def test_every_status_of_the_header_has_a_name(repository):
    constants = dict(re.findall(r"#define TRVFILES_(\w+) INT32_C\((-?\d+)\)", header(repository)))
    for status in _interface.Status:
        assert constants[status.name] == str(status.value)
    first = header(repository).index("TRVFILES_SUCCESS")
    last = header(repository).index("TRVFILES_MAX_TEXT_LENGTH")
    named = re.findall(r"#define TRVFILES_(\w+)", header(repository)[first - 8:last])
    assert set(named) - {"SUCCESS", "MAX_TEXT_LENGTH"} == {s.name for s in _interface.Status}
