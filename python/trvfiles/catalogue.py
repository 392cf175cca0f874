"""The catalogue of machine contexts. All functions use the runtime: see trvfiles.environment."""

from ctypes import byref, c_char_p, c_int32, c_size_t
from typing import List, NamedTuple, Optional, Sequence

from trvfiles._interface import (PathLike, call, call_for_texts, path_argument, runtime_lock,
                                 text_argument)
from trvfiles.errors import NotFoundError


class DefaultContext(NamedTuple):
    """The default one among names of contexts."""

    name: str
    """One of the names, as it was given."""
    position: int
    """Its machine position, from 1."""


class CreatedContext(NamedTuple):
    """The names of the files that were created."""

    context_file: str
    """The machine context file."""
    reference_file: str
    """The reference file: a copy of the axis file, to which the context refers."""


def context_directory() -> str:
    """The directory of the installation's favourite contexts.

    Raises UndefinedError if neither TRV_MCTX_DEF nor TRVHOME is known, ConfigurationError.
    """
    with runtime_lock:
        return call_for_texts("catalogue_directory")[0]


def favorite_contexts(directory: PathLike = "") -> List[str]:
    """The favourite contexts below a directory, by default that of the installation.

    The list is empty if the directory cannot be listed. Raises ConfigurationError.
    """
    with runtime_lock:
        return call_for_texts("catalogue_list", path_argument(directory))


def default_context(names: Sequence[str]) -> Optional[DefaultContext]:
    """The default one of bare file names: the first one of the highest machine position."""
    index, position = c_size_t(), c_int32()
    encoded = (c_char_p * len(names))(*(text_argument(name, "a name") for name in names))
    try:
        with runtime_lock:
            call("catalogue_choose_default", encoded, len(names), byref(index), byref(position))
    except NotFoundError:
        return None
    return DefaultContext(names[index.value], position.value)


def create_default_context(directory: PathLike, position: int) -> CreatedContext:
    """Creates the default context of a machine position, with its reference file.

    The directory has to exist. Raises Error if both files exist or one cannot be written.

    :param position: from 1
    """
    with runtime_lock:
        return CreatedContext(*call_for_texts("catalogue_create_default", path_argument(directory),
                                              position))


def create_context(directory: PathLike, machine: str, *, axis_file: str = "",
                   context_file: str = "") -> CreatedContext:
    """Creates a context for a machine, with its reference file.

    The axis file is copied in the current directory, which has to be the same as ``directory``.
    Raises Error if the axis file does not exist, if one of the files to create exists, or if one
    cannot be written.

    :param machine: the machine's file name
    :param axis_file: the axis file to copy; empty for "transfo.dat"
    :param context_file: the name of the context file; empty for "<machine>[<axis>].mctx"
    """
    with runtime_lock:
        return CreatedContext(*call_for_texts(
            "catalogue_create", path_argument(directory), text_argument(machine, "machine"),
            text_argument(axis_file, "axis_file"), text_argument(context_file, "context_file")))
