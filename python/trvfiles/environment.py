"""The runtime: variables, references and files of an installation.

The runtime belongs to the process and loads its configuration once. The functions of this package
that use it wait for each other.
"""

import ctypes
import difflib
import os
import pathlib
from collections.abc import Mapping
from typing import Any, Callable, Dict, Iterator, NamedTuple, Optional, Tuple

from trvfiles._interface import (MessageHandler, PathLike, call, call_for_texts, path_argument,
                                 path_text, runtime_lock, text_argument)
from trvfiles.errors import Error, UndefinedError

_VARIABLE, _PATH_VARIABLE = 0, 1
_CHANNELS = ("error", "fatal", "trace")


class Definition(NamedTuple):
    """A definition of a variable in a file of the configuration."""

    text: str
    """"NAME = value", as it was written."""
    file: str
    """The file; empty if the program has set the variable."""
    line: int
    """The line in the file, from 1; 0 if there is none."""


class Explanation(NamedTuple):
    """Why a variable has its value."""

    name: str
    """The name, as it was given."""
    value: str
    """The value, in which references are not expanded."""
    origin: str
    """Where the value came from, as in "from environment"."""
    definitions: Tuple[Definition, ...]
    """All definitions in the configuration, from the one that counts to the first."""


class Environment(Mapping[str, str]):
    """The variables of an installation: env["NAME"], and env["?NAME"] for a path list.

    A value is that of the process environment, or else that of the configuration; its references
    are not expanded. Iterating gives the names of the variables in the configuration. Raises
    UndefinedError, a KeyError, for a variable that is not defined.
    """

    _loaded_root: Optional[str] = None
    _root: str

    def __init__(self, root: Optional[PathLike] = None) -> None:
        """Loads the configuration of an installation.

        Raises ConfigurationError if it is missing or has a fault, and ValueError if the process
        has loaded that of another root.

        :param root: the directory of the installation, which becomes the environment variable
            TRVHOME; None if TRVHOME or the location of the program decides
        """
        with runtime_lock:
            loaded = Environment._loaded_root
            if root is not None:
                path = os.path.abspath(path_text(root))
                if loaded not in (None, path):
                    raise ValueError(f"the process has loaded the configuration of {loaded}: "
                                     f"that of {path} needs another process")
                path_argument(path)
                os.environ["TRVHOME"] = path
                call("process_variable_set", b"TRVHOME", path_argument(path))
            call_for_texts("variable_list")
            self._root = loaded or os.path.abspath(_native(call_for_texts("install_root", 0)[0]))
            Environment._loaded_root = self._root

    @property
    def root(self) -> pathlib.Path:
        """The directory of the installation."""
        return pathlib.Path(self._root)

    def __getitem__(self, name: str) -> str:
        kind, bare = _kind_and_name(name)
        try:
            with runtime_lock:
                return call_for_texts("variable_get", kind, text_argument(bare, "a name"))[0]
        except UndefinedError as problem:
            raise UndefinedError(problem.status, self._undefined(kind, bare)) from None

    def __contains__(self, name: object) -> bool:
        try:
            return isinstance(name, str) and self[name] is not None
        except UndefinedError:
            return False

    def __iter__(self) -> Iterator[str]:
        return iter(self._values())

    def __len__(self) -> int:
        return len(self._values())

    def explain(self, name: str) -> Explanation:
        """Where the value of a variable came from; raises UndefinedError."""
        value = self[name]
        kind, bare = _kind_and_name(name)
        with runtime_lock:
            origin = call_for_texts("variable_get", kind, text_argument(bare, "a name"))[1]
            try:
                texts = call_for_texts("variable_definitions", kind, text_argument(bare, "a name"))
            except UndefinedError:
                texts = []
        definitions = tuple(map(Definition, texts[0::3], map(_native, texts[1::3]),
                                map(int, texts[2::3])))
        return Explanation(name, value, _native(origin), definitions)

    def expand(self, text: str) -> str:
        """Expands the references in a text, as in "$SITE".

        Raises UndefinedError for a variable that is not defined, ExpansionError for a reference
        that is malformed or endless.
        """
        return _expanded(text, False)

    def expand_path(self, text: str) -> pathlib.Path:
        """Expands the references in a path, as in "$TRVHOME/tmp"; raises as expand()."""
        return pathlib.Path(_native(_expanded(text, True)))

    def find(self, name: str) -> pathlib.Path:
        """The file that a text names, as in "?CFG/shop.cfg": in the first directory that has it.

        Raises NotFoundError if no directory has it, otherwise as expand().
        """
        with runtime_lock:
            return pathlib.Path(_native(call_for_texts("search", None,
                                                       text_argument(name, "a name"),
                                                       file=name)[0]))

    def _values(self) -> Dict[str, str]:
        with runtime_lock:
            texts = call_for_texts("variable_list")
        return dict(zip(texts[0::2], texts[1::2]))

    def _undefined(self, kind: int, name: str) -> str:
        what = "path list" if kind == _PATH_VARIABLE else "variable"
        near = difflib.get_close_matches(name.upper(), list(self), 1) if kind == _VARIABLE else []
        hint = f"; the nearest is {near[0]!r}" if near else ""
        return f"the {what} {name!r} is not defined{hint}"

    def __repr__(self) -> str:
        return f"Environment({self._root!r})"

    def __eq__(self, other: object) -> bool:
        return isinstance(other, Environment) and self._root == other._root

    def __hash__(self) -> int:
        return hash(self._root)

    def __reduce__(self) -> Tuple[Any, ...]:
        return Environment, (self._root,)


Handler = Callable[[str], None]
_handlers: Dict[str, Any] = {}


def set_message_handler(channel: str, handler: Optional[Handler]) -> None:
    """Sets the function that receives the messages of a channel.

    It is called during the call that sends a message, with one text. An exception in it goes to
    sys.unraisablehook.

    :param channel: "error", "fatal" or "trace"
    :param handler: None for the default: errors go to standard error, traces are dropped, and
        fatal messages are only the reason of their ConfigurationError
    """
    if channel not in _CHANNELS:
        raise ValueError(f"there is no channel {channel!r}; there are {', '.join(_CHANNELS)}")
    function = _no_handler() if handler is None else _called_for_texts(handler)
    with runtime_lock:
        call("channel_set", _CHANNELS.index(channel), function, None)
        # The previous one must live until it is replaced.
        _handlers[channel] = function


def _no_handler() -> Any:
    return ctypes.cast(0, MessageHandler)


def _called_for_texts(handler: Handler) -> Any:
    return MessageHandler(lambda _context, _channel, message: handler(message.decode()))


def set_message_output(*, quiet: bool = False, echo: bool = False) -> None:
    """Where messages without a handler go.

    :param quiet: whether errors are dropped
    :param echo: whether errors and traces are printed on standard output
    """
    with runtime_lock:
        call("channel_set_output", int(quiet), int(echo))


def _kind_and_name(name: str) -> Tuple[int, str]:
    text_argument(name, "a name")
    if name.startswith("?"):
        return _PATH_VARIABLE, name[1:]
    return _VARIABLE, name[1:] if name.startswith("$") else name


def _expanded(text: str, as_path: bool) -> str:
    try:
        with runtime_lock:
            return call_for_texts("expand", text_argument(text, "a text"), int(as_path))[0]
    except Error as problem:
        raise type(problem)(problem.status, f"{text!r}: {problem.reason}") from None


def _native(path: str) -> str:
    """A path of the runtime, which may separate by "\\" on every system, for this system."""
    return path.replace("\\", os.sep)
